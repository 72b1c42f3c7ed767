#pragma once

#include "command.h"

#include <QObject>
#include <QPointer>

#include <stop_token>

namespace Sealkit::Internal {

struct KeyGenerationData;
struct SignData;

/// Base of the back ends: what can be done to packages in a build target. Each operation runs its
/// tool to the end (see Command::exec) and returns the outcome of the last run; what the tool
/// prints goes to the General Messages, and its pass-phrase prompts to the user.
class SignTool : public QObject
{
    Q_OBJECT

public:
    explicit SignTool(QObject *parent);

    virtual Command::Result
    addSignature(const QString &target, const QStringList &packages, const SignData &data) = 0;
    virtual Command::Result removeSignature(const QString &target, const QStringList &packages) = 0;
    virtual Command::Result
    verifySignature(const QString &target, const QStringList &packages, const SignData &data) = 0;
    virtual Command::Result dumpSignature(const QString &target, const QStringList &packages) = 0;
    virtual Command::Result generateRequest(const QString &target,
                                            const KeyGenerationData &data) = 0;

    /// The handler of every run: emits lines and answers prompts. False when the user declined a
    /// prompt, or when somebody deleted this object meanwhile.
    bool handleIO(const QByteArray &stdOutChunk, const QByteArray &stdErrChunk, QByteArray &input);

    /// When \a stop is requested, the program and the prompt of each operation that begins from now
    /// on are ended at once.
    void setStopToken(const std::stop_token &stop) { m_stopToken = stop; }

signals:
    void addOutput(const QString &output);
    void addError(const QString &error);

protected:
    /// Runs a command line of \a tool; none when the object has been deleted in an earlier run.
    /// An empty \a handler stands for the tool's own.
    static Command::Result run(const QPointer<const SignTool> &tool,
                               const QStringList &commandLine,
                               const Command::Handler &handler = {});
    template<typename Tag, typename... Args>
    Command::Result run(const Args &...args) const
    {
        return run(QPointer(this), Command::compose<Tag>(args...));
    }

    /// For a run that makes a key in the file \a newKey, which its prompts do not name.
    Command::Handler handlerForNewKey(const QString &newKey);

    /// A copy of it can be called when this object is gone; it then kills the program.
    Command::Handler m_handler;

private:
    /// What was said in one run.
    struct Conversation
    {
        QString newKey;     ///< the file of the key that is made
        QString lastPrompt; ///< has been answered
        QString lastLine;   ///< of the tool since then
    };

    bool handleIO(const QByteArray &stdOutChunk,
                  const QByteArray &stdErrChunk,
                  QByteArray &input,
                  Conversation &conversation);
    bool handleIOInternal(const QByteArray &chunk,
                          bool isError,
                          QByteArray &input,
                          Conversation &conversation);
    bool answer(const QString &prompt, QByteArray &input, Conversation &conversation) const;

    std::stop_token m_stopToken;
};

/// Whether a tool asks for a pass phrase with this line.
bool isPasswordReq(const QString &line);

} // namespace Sealkit::Internal
