#pragma once

#include <projectexplorer/buildstep.h>

#include <QPlainTextEdit>
#include <QQueue>
#include <QTimer>

namespace Workbench {

/// What a run or the plugins print: grows at the end, forgets its oldest lines when it gets very
/// long, and follows the end as long as the reader stays there. Shows what is appended as soon as
/// the event loop turns; of very much text, as much at a time as leaves the window usable.
class OutputPane : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit OutputPane(QWidget *parent = nullptr);

    void append(const QString &text, ProjectExplorer::BuildStep::OutputFormat format);
    void appendMessage(const QString &message);
    /// Takes away also what is not shown yet.
    void clear();
    bool showsAll() const { return m_pending.isEmpty(); }

private:
    struct Portion
    {
        QString text;
        ProjectExplorer::BuildStep::OutputFormat format;
        qsizetype lineCount;
    };

    void enqueue(const Portion &portion);
    Portion dequeue();
    void takeTurn();
    void insert(const Portion &portion);
    void forgetOldestLines();

    QQueue<Portion> m_pending;
    qsizetype m_pendingLines = 0;
    QTimer m_turn;
    bool m_follows = true;
};

} // namespace Workbench
