#include "command.h"

#include "constants.h"
#include "ideclosing.h"
#include "runlog.h"
#include "signdata.h"
#include "utils.h"

#include <brisk/buildengine.h>
#include <coreplugin/icore.h>
#include <veyraos/kilnsettings.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

#include <chrono>

namespace Sealkit::Internal::Command {

constexpr std::chrono::milliseconds WRITE_TIMEOUT{30'000};

/// The words of a command line that are always the same, written as in a shell.
static QStringList words(const char *line)
{
    return QString::fromLatin1(line).split(QLatin1Char(' '));
}

template<>
QStringList compose<brisk>()
{
    return {Kiln::Internal::KilnSettings::briskPath()};
}

template<>
QStringList compose<brisk::engine>()
{
    return compose<brisk>() << words("engine");
}

template<>
QStringList compose<brisk::engine::start>()
{
    return compose<brisk::engine>() << words("start");
}

template<>
QStringList compose<Target>(const QString &target)
{
    return compose<brisk::engine>() << words("exec -tt sb2 -t") << target;
}

template<>
QStringList compose<Target::nxvcert_cli>(const QString &target)
{
    return compose<Target>(target) << words("nxvcert-cli");
}

template<>
QStringList compose<Target::nxvcert_cli::remove>(const QString &target, const QStringList &files)
{
    return compose<Target::nxvcert_cli>(target) << words("delete") << files;
}

template<>
QStringList compose<Target::nxvcert_cli::dump>(const QString &target, const QStringList &files)
{
    return compose<Target::nxvcert_cli>(target) << words("dump") << files;
}

template<>
QStringList compose<Target::nxvcert_cli::help>(const QString &target)
{
    return compose<Target::nxvcert_cli>(target) << words("--help");
}

template<>
QStringList compose<Target::nxvcert_cli::verify>(const QString &target,
                                                 const QString &rootCertificate,
                                                 const QStringList &files)
{
    return compose<Target::nxvcert_cli>(target)
           << words("verify --root-cert-file-path") << rootCertificate << files;
}

template<>
QStringList compose<Target::openssl::version>(const QString &target)
{
    // One element: the engine runs it as a shell line, which finds openssl wherever the target
    // keeps it.
    return compose<Target>(target) << QStringLiteral("openssl version");
}

template<>
QStringList compose<Target::openssl::generateKeyGost>(const QString &target,
                                                      const QString &keyPath,
                                                      const bool &encrypt)
{
    QStringList line = compose<Target>(target);
    line << words("openssl genpkey -engine gost -algorithm gost2012_256 -pkeyopt paramset:A -out")
         << keyPath;
    if (encrypt)
        line << words("-aes256");
    return line;
}

template<>
QStringList compose<Target::openssl::generateKeyRSA>(const QString &target,
                                                     const QString &keyPath,
                                                     const bool &encrypt)
{
    QStringList line = compose<Target>(target);
    line << words("openssl genpkey --algorithm rsa -pkeyopt rsa_keygen_bits:2048 -out") << keyPath;
    if (encrypt)
        line << words("-aes256");
    return line;
}

template<>
QStringList compose<Target::openssl::generateRequest>(const QString &target,
                                                      const QString &keyPath,
                                                      const QString &requestPath,
                                                      const QString &configPath)
{
    return compose<Target>(target) << words("openssl req -new -utf8 -batch -config") << configPath
                                   << words("-key") << keyPath << words("-out") << requestPath;
}

template<>
QStringList compose<Target::rpmsign_external>(const QString &target)
{
    return compose<Target>(target) << words(Constants::RPMSIGN_EXTERNAL_TOOL);
}

template<>
QStringList compose<Target::rpmsign_external::remove>(const QString &target,
                                                      const QStringList &files)
{
    return compose<Target::rpmsign_external>(target) << words("delete") << files;
}

template<>
QStringList compose<Target::rpmsign_external::dump>(const QString &target, const QStringList &files)
{
    return compose<Target::rpmsign_external>(target) << words("dump") << files;
}

template<>
QStringList compose<Target::rpmsign_external::version>(const QString &target)
{
    return compose<Target::rpmsign_external>(target) << words("--version");
}

template<>
QStringList compose<Target::rpmsign_external::sign>(const QString &target,
                                                    const QString &key,
                                                    const QString &certificate,
                                                    const QStringList &files)
{
    return compose<Target::rpmsign_external>(target)
           << words("sign -k") << key << words("-c") << certificate << files;
}

template<>
QStringList compose<Target::rpmsign_external::verify>(const QString &target,
                                                      const QString &rootCertificate,
                                                      const QStringList &files)
{
    QStringList line = compose<Target::rpmsign_external>(target) << words("verify");
    if (!rootCertificate.isEmpty())
        line << words("--root-cert") << rootCertificate;
    return line << files;
}

template<>
QStringList compose<Target::customer_sign>(const QString &target)
{
    return compose<Target>(target) << words(Constants::CUSTOMER_SIGN_TOOL);
}

template<>
QStringList compose<Target::customer_sign::help>(const QString &target)
{
    return compose<Target::customer_sign>(target) << words("--help");
}

template<>
QStringList compose<Target::customer_sign::sign>(const QString &target,
                                                 const SignData &data,
                                                 const QStringList &files)
{
    QStringList line = compose<Target::customer_sign>(target)
                       << words("--binaries-key") << data.binariesKey << words("--packages-key")
                       << data.key << words("--packages-cert") << data.certificate;
    if (!data.clientCertificate.isEmpty())
        line << words("--packages-client-cert") << data.clientCertificate;
    return line << files;
}

static QString workingDirectory()
{
    const Brisk::BuildEngine *engine = firstBuildEngine();
    return engine ? engine->sharedSrcPath().toFSPathString() : QDir::homePath();
}

/// Why nothing is to be run any more.
static Cancellation reasonToStop(const std::stop_token &stop)
{
    if (isIdeClosing())
        return IdeClosing;
    return stop.stop_requested() ? StoppedByUser : NotCancelled;
}

/// Hands new output of the program to \a handler, and the answer of the handler to the program.
static void
converse(QProcess &process, Handler &handler, const std::stop_token &stop, Result &result)
{
    const QByteArray stdOutChunk = process.readAllStandardOutput();
    const QByteArray stdErrChunk = process.readAllStandardError();
    result.stdOut += stdOutChunk;
    result.stdErr += stdErrChunk;

    QByteArray input;
    if (reasonToStop(stop) || !handler(stdOutChunk, stdErrChunk, input)) {
        result.cancelled = PromptDeclined;
        process.kill();
        // The last output is still captured, but the killed program needs no more answers.
        handler = [](const QByteArray &, const QByteArray &, QByteArray &) { return true; };
        return;
    }
    // The program can have ended while the handler waited for the user.
    if (input.isEmpty() || process.state() != QProcess::Running)
        return;
    process.write(input);
    process.waitForBytesWritten(int(WRITE_TIMEOUT.count()));
}

static bool hasUnreadOutput(QProcess &process)
{
    process.setReadChannel(QProcess::StandardError);
    const bool hasErrors = process.bytesAvailable() > 0;
    process.setReadChannel(QProcess::StandardOutput);
    return hasErrors || process.bytesAvailable() > 0;
}

static void
runToEnd(QProcess &process, Handler &handler, const std::stop_token &stop, Result &result)
{
    while (process.state() != QProcess::NotRunning) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (!handler)
            continue;
        // QProcess also reads while the handler waits for the user or an answer is written, and no
        // event announces that output later.
        do {
            converse(process, handler, stop, result);
        } while (hasUnreadOutput(process));
    }
}

static void reportFailedStart(const QProcess &process)
{
    logError(QObject::tr("Error: cannot start \"%1\": %2")
                 .arg(process.program(), process.errorString()));
}

Result exec(Handler handler, const QStringList &commandLine, std::stop_token stop)
{
    // The list may belong to somebody who is gone after the run.
    const QString shownCommandLine = commandLine.join(QLatin1Char(' '));
    if (const Cancellation reason = reasonToStop(stop))
        return Result::notRun(reason);

    QProcess process;
    process.setWorkingDirectory(workingDirectory());
    process.setProgram(commandLine.value(0));
    process.setArguments(commandLine.mid(1));
    QObject::connect(
        Core::ICore::instance(), &Core::ICore::coreAboutToClose, &process, &QProcess::kill);
    const std::stop_callback killAtStop(stop, [&process] { process.kill(); });

    Result result;
    process.start(QIODevice::ReadWrite);
    result.started = process.waitForStarted(-1);
    if (result.started)
        runToEnd(process, handler, stop, result);
    else
        reportFailedStart(process);

    logRun(process.exitCode(), shownCommandLine);
    result.crashed = process.exitStatus() == QProcess::CrashExit;
    result.exitCode = process.exitCode();
    // A prompt is also closed, and a silent program killed, when nothing is to be run any more.
    if (const Cancellation reason = reasonToStop(stop); reason && result.crashed)
        result.cancelled = reason;
    return result;
}

} // namespace Sealkit::Internal::Command
