#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <stop_token>
#include <utility>

namespace Sealkit::Internal {

struct SignData;

/// The command lines of all tools, and the one place that runs them.
namespace Command {

// Each tag stands for a command word; nested, they give the order of the words.
// clang-format off
struct brisk
{
    struct engine
    {
        struct start {};
        struct target
        {
            struct nxvcert_cli
            {
                struct remove {};
                struct dump {};
                struct help {};
                struct verify {};
            };
            struct openssl
            {
                struct version {};
                struct generateKeyGost {};
                struct generateKeyRSA {};
                struct generateRequest {};
            };
            struct rpmsign_external
            {
                struct remove {};
                struct dump {};
                struct version {};
                struct sign {};
                struct verify {};
            };
            struct customer_sign
            {
                struct help {};
                struct sign {};
            };
        };
    };
};
// clang-format on
using Target = brisk::engine::target;

/// The command line for \a Tag: element 0 is the program, the rest are its arguments. Arguments are
/// single elements and stay as they are: nothing is quoted, split or mapped.
/// Only the commands below compose.
template<typename Tag, typename... Args>
QStringList compose(const Args &...args) = delete;

template<>
QStringList compose<brisk>();
template<>
QStringList compose<brisk::engine>();
template<>
QStringList compose<brisk::engine::start>();
template<>
QStringList compose<Target>(const QString &target);

template<>
QStringList compose<Target::nxvcert_cli>(const QString &target);
template<>
QStringList compose<Target::nxvcert_cli::remove>(const QString &target, const QStringList &files);
template<>
QStringList compose<Target::nxvcert_cli::dump>(const QString &target, const QStringList &files);
template<>
QStringList compose<Target::nxvcert_cli::help>(const QString &target);
/// An empty \a rootCertificate is passed on: the tool then takes its own bundle.
template<>
QStringList compose<Target::nxvcert_cli::verify>(const QString &target,
                                                 const QString &rootCertificate,
                                                 const QStringList &files);

template<>
QStringList compose<Target::rpmsign_external>(const QString &target);
template<>
QStringList compose<Target::rpmsign_external::remove>(const QString &target,
                                                      const QStringList &files);
template<>
QStringList compose<Target::rpmsign_external::dump>(const QString &target,
                                                    const QStringList &files);
template<>
QStringList compose<Target::rpmsign_external::version>(const QString &target);
template<>
QStringList compose<Target::rpmsign_external::sign>(const QString &target,
                                                    const QString &key,
                                                    const QString &certificate,
                                                    const QStringList &files);
/// An empty \a rootCertificate leaves its option out.
template<>
QStringList compose<Target::rpmsign_external::verify>(const QString &target,
                                                      const QString &rootCertificate,
                                                      const QStringList &files);

template<>
QStringList compose<Target::customer_sign>(const QString &target);
template<>
QStringList compose<Target::customer_sign::help>(const QString &target);
/// Only an empty client certificate leaves its option out.
template<>
QStringList compose<Target::customer_sign::sign>(const QString &target,
                                                 const SignData &data,
                                                 const QStringList &files);

template<>
QStringList compose<Target::openssl::version>(const QString &target);
template<>
QStringList compose<Target::openssl::generateKeyGost>(const QString &target,
                                                      const QString &keyPath,
                                                      const bool &encrypt);
template<>
QStringList compose<Target::openssl::generateKeyRSA>(const QString &target,
                                                     const QString &keyPath,
                                                     const bool &encrypt);
template<>
QStringList compose<Target::openssl::generateRequest>(const QString &target,
                                                      const QString &keyPath,
                                                      const QString &requestPath,
                                                      const QString &configPath);

/// Why a run was ended from here; false when it ended by itself.
enum Cancellation { NotCancelled, PromptDeclined, StoppedByUser, IdeClosing, ToolObjectGone };

/// The outcome of one run.
struct Result
{
    bool crashed = false; ///< ended by a signal, a kill included
    int exitCode = 0;
    QByteArray stdErr;
    QByteArray stdOut;
    bool started = true; ///< if not, the exit code can be 0 nevertheless
    Cancellation cancelled = NotCancelled;

    /// The result of a run for which no program was started, for the reason \a cancelled.
    static Result notRun(Cancellation cancelled)
    {
        return {.crashed = true,
                .exitCode = -1,
                .stdErr = {},
                .stdOut = {},
                .started = false,
                .cancelled = cancelled};
    }
    bool succeeded() const { return started && !crashed && exitCode == 0; }
    friend bool operator==(const Result &, const Result &) = default;
};

/// Gets what the program newly printed (either chunk may be empty). What it appends to \a input is
/// written to the program; false kills the program, which then counts as PromptDeclined.
using Handler = std::function<bool(
    const QByteArray &stdOutChunk, const QByteArray &stdErrChunk, QByteArray &input)>;

/// Runs \a commandLine to its end in the workspace of the first build engine (without one, in the
/// user's home) while the event loop turns: whoever calls this may be gone when it returns.
/// Writes one line on the run to the General Messages, and one with the reason if the program
/// cannot be started; the result is then what QProcess reports for a process that never ran.
/// Without a handler the output is not read. When \a stop is requested or the IDE closes, whichever
/// event loop turns then, the program is killed at once and the handler is not called any more;
/// later calls start nothing. Such runs count as crashed. Once the IDE closes nothing is written.
Result exec(Handler handler, const QStringList &commandLine, std::stop_token stop = {});

template<typename Tag, typename... Args>
Result exec(Handler handler, const Args &...args)
{
    return exec(std::move(handler), compose<Tag>(args...));
}

} // namespace Command
} // namespace Sealkit::Internal
