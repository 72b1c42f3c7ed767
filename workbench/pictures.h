#pragma once

#include "commandline.h"
#include "mainwindow.h"
#include "promptanswerer.h"
#include "session.h"

#include <utils/id.h>

#include <functional>

namespace Workbench {

class StepCard;

/// Takes the pictures of the user guide: drives the real windows through a deploy of the demo
/// project and through the plugin's dialogs, and writes each as NAME.png. It works on a demo SDK,
/// whose keys and pass phrase it knows; packages get signed and a key is made.
class Pictures : public QObject
{
    Q_OBJECT

public:
    explicit Pictures(const CommandLine &commandLine);
    ~Pictures() override;

    /// The exit code: 0 when all pictures were taken. Otherwise the reasons are on stderr.
    int run();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void deploy();
    void showSteps();
    void showSignDialog();
    void showOptions();
    void sign(QWidget *dialog);
    void verify(QWidget *dialog);
    void requestCertificate(QWidget *dialog);

    void take(QWidget *widget, const QString &name);
    void save(QWidget *widget, const QString &name);
    void waitUntil(const QString &event, const std::function<bool()> &hasCome);
    void waitForTools(const QWidget *dialog);
    void press(const QWidget *dialog, const char *button);
    void setPath(const QWidget *dialog, const char *chooser, const QString &path);
    template<typename Widget>
    Widget *part(const QWidget *window, const char *name);
    StepCard *stepCard(Utils::Id stepId) const;
    QString package() const;
    QString inWorkspace(const QString &path) const;
    void complain(const QString &problem);

    const CommandLine m_commandLine;
    PromptAnswerer m_answerer;
    Session m_session;
    MainWindow m_window;
    bool m_hasPasswordPicture = false;
    int m_problems = 0;
};

} // namespace Workbench
