#pragma once

#include <projectexplorer/buildstep.h>

#include <QPlainTextEdit>

namespace Workbench {

/// What a run or the plugins print: grows at the end, forgets its oldest lines when it gets very
/// long, and follows the end as long as the reader stays there.
class OutputPane : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit OutputPane(QWidget *parent = nullptr);

    void append(const QString &text, ProjectExplorer::BuildStep::OutputFormat format);
    void appendMessage(const QString &message);

private:
    bool m_follows = true;
};

} // namespace Workbench
