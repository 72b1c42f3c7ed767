#pragma once

#include "messages.h"
#include "workplace.h"

#include <QMap>
#include <QPointer>
#include <QStringList>

#include <functional>

class QDialog;

/// A workplace where things go wrong: a project with two packages, faults around it, and somebody
/// at the dialog who writes down all that is said.
class FaultyGround
{
public:
    ~FaultyGround();

    /// Packages that are ready to be signed in the target.
    void openProject(const QString &targetName);
    void closeProject();
    QString inWorkspace(const QString &path) const
    {
        return m_workplace.sdk().workspace() + '/' + path;
    }
    /// A new file in a folder of the workspace that goes with the project.
    QString makeFile(const QString &name, const QByteArray &contents = {}) const;
    /// All that is in the project's folder.
    QMap<QString, QByteArray> projectFiles() const;
    /// Runs one of the target's tools; returns the exit code.
    int runTool(const QStringList &words) const;

    // Faults. Those that are not in files of the project end with endFaults().
    void setBrisk(const QString &path) const;
    /// Runs \a script in place of what signs, if it ends, else before it.
    void inBrisk(const QByteArray &script) const;
    /// The same in the tool of the target, where its first word fits \a pattern.
    void inTool(const QString &name, const QByteArray &pattern, const QByteArray &script);
    void inSignTool(const QByteArray &script);
    void moveAway(const QString &path);
    void closeSdk();
    /// Leaves enough to look for packages, and not enough to start a process.
    void useUpFileHandles();
    bool hasFaults() const { return !m_ends.isEmpty(); }
    void endFaults();

    /// Shows the dialog, and waits until it has started the engine, or failed to.
    void openDialog(QDialog *dialog);
    void enter(const QString &pathChooser, const QString &path) const;
    /// A hidden button, too. Waits for the run to end.
    void click(const QString &button) const;

    /// All that the dialog shows, icons behind the names of their labels, and all that came to the
    /// General Messages since the last time.
    QStringList takeTexts();

    /// Where the tool is that signs in the target.
    QString signTool() const;
    const QString &target() const { return m_target; }
    /// Of another target than the project's are the tools that faults hit from now on.
    void setTarget(const QString &name) { m_target = name; }

    ProjectExplorer::Project *project = nullptr;
    QStringList packages;
    QPointer<QDialog> dialog;

private:
    Workplace m_workplace;
    QTemporaryDir m_scripts;
    Messages m_messages;
    QStringList m_said;
    QString m_target;
    QList<std::function<void()>> m_ends;
};
