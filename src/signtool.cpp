#include "signtool.h"

#include "passworddialog.h"
#include "runlog.h"

#include <algorithm>
#include <array>

namespace Sealkit::Internal {

SignTool::SignTool(QObject *parent)
    : QObject(parent)
    , m_handler(handlerForNewKey({}))
{
    connect(this, &SignTool::addOutput, this, logOutput);
    connect(this, &SignTool::addError, this, logError);
}

Command::Handler SignTool::handlerForNewKey(const QString &newKey)
{
    // Each run has a copy of the handler, and so a conversation of its own.
    return [self = QPointer<SignTool>(this),
            conversation = Conversation{.newKey = newKey, .lastPrompt = {}, .lastLine = {}}](
               const QByteArray &stdOutChunk,
               const QByteArray &stdErrChunk,
               QByteArray &input) mutable {
        return self && self->handleIO(stdOutChunk, stdErrChunk, input, conversation);
    };
}

Command::Result SignTool::run(const QPointer<const SignTool> &tool,
                              const QStringList &commandLine,
                              const Command::Handler &handler)
{
    if (!tool)
        return Command::Result::notRun(Command::ToolObjectGone);
    Command::Result result =
        Command::exec(handler ? handler : tool->m_handler, commandLine, tool->m_stopToken);
    if (!tool && result.cancelled == Command::PromptDeclined)
        result.cancelled = Command::ToolObjectGone;
    return result;
}

bool SignTool::handleIO(const QByteArray &stdOutChunk,
                        const QByteArray &stdErrChunk,
                        QByteArray &input)
{
    Conversation conversation;
    return handleIO(stdOutChunk, stdErrChunk, input, conversation);
}

bool SignTool::handleIO(const QByteArray &stdOutChunk,
                        const QByteArray &stdErrChunk,
                        QByteArray &input,
                        Conversation &conversation)
{
    return handleIOInternal(stdOutChunk, false, input, conversation)
           && handleIOInternal(stdErrChunk, true, input, conversation);
}

/// What the prompts for a new key do not say.
static QString noteOnNewKey(const QString &prompt, const QString &newKey)
{
    if (newKey.isEmpty())
        return {};
    return prompt.startsWith(QLatin1String("Verifying"))
               ? SignTool::tr("Second of two times, for the new key %1").arg(newKey)
               : SignTool::tr("First of two times, for the new key %1").arg(newKey);
}

/// Asks the user what a tool asks for with \a prompt. False when the user declines.
bool SignTool::answer(const QString &prompt, QByteArray &input, Conversation &conversation) const
{
    // The same prompt once more means that the answer was wrong; lines before another prompt are
    // mere progress.
    const bool asksAgain = prompt == conversation.lastPrompt;
    const PromptHints hints{.note = noteOnNewKey(prompt, conversation.newKey),
                            .problem = asksAgain ? conversation.lastLine : QString()};
    conversation.lastPrompt = prompt;
    conversation.lastLine.clear();
    bool ok = false;
    const QString password = PasswordDialog::getPassord(prompt, &ok, m_stopToken, hints);
    if (!ok || password.isEmpty())
        return false;
    input += password.toUtf8() + '\n';
    return true;
}

bool SignTool::handleIOInternal(const QByteArray &chunk,
                                bool isError,
                                QByteArray &input,
                                Conversation &conversation)
{
    const QPointer<SignTool> self(this);
    // To split at a regular expression for both line ends would take twice as long.
    const QString text = QString::fromUtf8(chunk).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        bool goesOn = true;
        if (isPasswordReq(line)) {
            goesOn = answer(line, input, conversation);
        } else {
            conversation.lastLine = line;
            isError ? emit addError(line) : emit addOutput(line);
        }
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
