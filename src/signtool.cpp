#include "signtool.h"

#include "passworddialog.h"
#include "runlog.h"

#include <algorithm>
#include <array>

namespace Sealkit::Internal {

SignTool::SignTool(QObject *parent)
    : QObject(parent)
    , m_handler([self = QPointer<SignTool>(this)](const QByteArray &stdOutChunk,
                                                  const QByteArray &stdErrChunk,
                                                  QByteArray &input) {
        return self && self->handleIO(stdOutChunk, stdErrChunk, input);
    })
{
    connect(this, &SignTool::addOutput, this, logOutput);
    connect(this, &SignTool::addError, this, logError);
}

Command::Result SignTool::run(const QPointer<const SignTool> &tool, const QStringList &commandLine)
{
    if (!tool)
        return Command::Result::notRun(Command::ToolObjectGone);
    Command::Result result = Command::exec(tool->m_handler, commandLine, tool->m_stopToken);
    if (!tool && result.cancelled == Command::PromptDeclined)
        result.cancelled = Command::ToolObjectGone;
    return result;
}

bool SignTool::handleIO(const QByteArray &stdOutChunk,
                        const QByteArray &stdErrChunk,
                        QByteArray &input)
{
    return handleIOInternal(stdOutChunk, false, input)
           && handleIOInternal(stdErrChunk, true, input);
}

/// Asks the user what a tool asks for with \a prompt. False when the user declines.
static bool answer(const QString &prompt, const std::stop_token &stop, QByteArray &input)
{
    bool ok = false;
    const QString password = PasswordDialog::getPassord(prompt, &ok, stop);
    if (!ok || password.isEmpty())
        return false;
    input += password.toUtf8() + '\n';
    return true;
}

bool SignTool::handleIOInternal(const QByteArray &chunk, bool isError, QByteArray &input)
{
    const QPointer<SignTool> self(this);
    // To split at a regular expression for both line ends would take twice as long.
    const QString text = QString::fromUtf8(chunk).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        bool goesOn = true;
        if (isPasswordReq(line))
            goesOn = answer(line, m_stopToken, input);
        else if (isError)
            emit addError(line);
        else
            emit addOutput(line);
        if (!self || !goesOn)
            return false; // whoever was told of the line may have deleted this object
    }
    return true;
}

bool isPasswordReq(const QString &line)
{
    static constexpr std::array prompts{
        QLatin1String("Enter passphrase for binaries key"),
        QLatin1String("Enter PEM pass phrase"),
        QLatin1String("Verifying - Enter PEM pass phrase"),
        QLatin1String("Enter pass phrase"),
    };
    return std::any_of(prompts.begin(), prompts.end(), [&line](QLatin1String prompt) {
        return line.startsWith(prompt);
    });
}

} // namespace Sealkit::Internal
