#include "command.h"

#include "constants.h"
#include "ideclosing.h"
#include "signdata.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <coreplugin/icore.h>
#include <coreplugin/messagemanager.h>
#include <veyraos/kilnsettings.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

#include <chrono>

namespace Sealkit::Internal::Command {

using Target = brisk::engine::target;
using L1 = QLatin1String;

constexpr std::chrono::milliseconds WRITE_TIMEOUT{30'000};

template<>
QStringList compose<brisk>()
{
    return {Kiln::Internal::KilnSettings::briskPath()};
}

template<>
QStringList compose<brisk::engine>()
{
    return compose<brisk>() << L1("engine");
}

template<>
QStringList compose<brisk::engine::start>()
{
    return compose<brisk::engine>() << L1("start");
}

template<>
QStringList compose<Target>(const QString &targetName)
{
    return compose<brisk::engine>()
           << L1("exec") << L1("-tt") << L1("sb2") << L1("-t") << targetName;
}

template<>
QStringList compose<Target::nxvcert_cli>(const QString &targetName)
{
    return compose<Target>(targetName) << L1("nxvcert-cli");
}

template<>
QStringList compose<Target::nxvcert_cli::remove>(const QString &targetName,
                                                 const QStringList &files)
{
    return compose<Target::nxvcert_cli>(targetName) << L1("delete") << files;
}

template<>
QStringList compose<Target::nxvcert_cli::dump>(const QString &targetName, const QStringList &files)
{
    return compose<Target::nxvcert_cli>(targetName) << L1("dump") << files;
}

template<>
QStringList compose<Target::nxvcert_cli::help>(const QString &targetName)
{
    return compose<Target::nxvcert_cli>(targetName) << L1("--help");
}

template<>
QStringList compose<Target::nxvcert_cli::verify>(const QString &targetName,
                                                 const QString &rootCertificate,
                                                 const QStringList &files)
{
    return compose<Target::nxvcert_cli>(targetName)
           << L1("verify") << L1("--root-cert-file-path") << rootCertificate << files;
}

template<>
QStringList compose<Target::openssl::version>(const QString &targetName)
{
    // One element: the engine runs it as a shell line, which finds openssl wherever the target
    // keeps it.
    return compose<Target>(targetName) << L1("openssl version");
}

template<>
QStringList compose<Target::openssl::generateKeyGost>(const QString &targetName,
                                                      const QString &keyPath,
                                                      const bool &encrypt)
{
    QStringList words{L1("openssl"),
                      L1("genpkey"),
                      L1("-engine"),
                      L1("gost"),
                      L1("-algorithm"),
                      L1("gost2012_256"),
                      L1("-pkeyopt"),
                      L1("paramset:A"),
                      L1("-out"),
                      keyPath};
    if (encrypt)
        words << L1("-aes256");
    return compose<Target>(targetName) << words;
}

template<>
QStringList compose<Target::openssl::generateKeyRSA>(const QString &targetName,
                                                     const QString &keyPath,
                                                     const bool &encrypt)
{
    QStringList words{L1("openssl"),
                      L1("genpkey"),
                      L1("--algorithm"),
                      L1("rsa"),
                      L1("-pkeyopt"),
                      L1("rsa_keygen_bits:2048"),
                      L1("-out"),
                      keyPath};
    if (encrypt)
        words << L1("-aes256");
    return compose<Target>(targetName) << words;
}

template<>
QStringList compose<Target::openssl::generateRequest>(const QString &targetName,
                                                      const QString &keyPath,
                                                      const QString &requestPath,
                                                      const QString &configPath)
{
    const QStringList words{L1("openssl"),
                            L1("req"),
                            L1("-new"),
                            L1("-utf8"),
                            L1("-batch"),
                            L1("-config"),
                            configPath,
                            L1("-key"),
                            keyPath,
                            L1("-out"),
                            requestPath};
    return compose<Target>(targetName) << words;
}

template<>
QStringList compose<Target::rpmsign_external>(const QString &targetName)
{
    return compose<Target>(targetName) << Constants::RPMSIGN_EXTERNAL_TOOL;
}

template<>
QStringList compose<Target::rpmsign_external::remove>(const QString &targetName,
                                                      const QStringList &files)
{
    return compose<Target::rpmsign_external>(targetName) << L1("delete") << files;
}

template<>
QStringList compose<Target::rpmsign_external::dump>(const QString &targetName,
                                                    const QStringList &files)
{
    return compose<Target::rpmsign_external>(targetName) << L1("dump") << files;
}

template<>
QStringList compose<Target::rpmsign_external::version>(const QString &targetName)
{
    return compose<Target::rpmsign_external>(targetName) << L1("--version");
}

template<>
QStringList compose<Target::rpmsign_external::sign>(const QString &targetName,
                                                    const QString &key,
                                                    const QString &certificate,
                                                    const QStringList &files)
{
    return compose<Target::rpmsign_external>(targetName)
           << L1("sign") << L1("-k") << key << L1("-c") << certificate << files;
}

template<>
QStringList compose<Target::rpmsign_external::verify>(const QString &targetName,
                                                      const QString &rootCertificate,
                                                      const QStringList &files)
{
    QStringList words = compose<Target::rpmsign_external>(targetName) << L1("verify");
    if (!rootCertificate.isEmpty())
        words << L1("--root-cert") << rootCertificate;
    return words << files;
}

template<>
QStringList compose<Target::customer_sign>(const QString &targetName)
{
    return compose<Target>(targetName) << Constants::CUSTOMER_SIGN_TOOL;
}

template<>
QStringList compose<Target::customer_sign::help>(const QString &targetName)
{
    return compose<Target::customer_sign>(targetName) << L1("--help");
}

template<>
QStringList compose<Target::customer_sign::sign>(const QString &targetName,
                                                 const SignData &data,
                                                 const QStringList &files)
{
    QStringList words = compose<Target::customer_sign>(targetName)
                        << L1("--binaries-key") << data.binariesKey << L1("--packages-key")
                        << data.key << L1("--packages-cert") << data.certificate;
    if (!data.clientCertificate.isEmpty())
        words << L1("--packages-client-cert") << data.clientCertificate;
    return words << files;
}

static QString workingDirectory()
{
    const QList<Brisk::BuildEngine *> engines = Brisk::Sdk::buildEngines();
    return engines.isEmpty() ? QDir::homePath() : engines.first()->sharedSrcPath().toFSPathString();
}

/// Makes room by hand: QByteArray would copy all it has each time that it grows, and the system
/// would have to find fresh memory for all of it.
static void append(QByteArray &bytes, const QByteArray &chunk)
{
    const qsizetype size = bytes.size() + chunk.size();
    if (size > bytes.capacity())
        bytes.reserve(2 * size);
    bytes += chunk;
}

/// Hands on what the program has printed since the last call, and the answer to it.
static void converse(QProcess &process, Handler &handler, Result &result)
{
    const QByteArray stdOutChunk = process.readAllStandardOutput();
    const QByteArray stdErrChunk = process.readAllStandardError();
    append(result.stdOut, stdOutChunk);
    append(result.stdErr, stdErrChunk);

    QByteArray input;
    if (isIdeClosing() || !handler(stdOutChunk, stdErrChunk, input)) {
        result.cancelled = true;
        process.kill();
        // Its last words are kept, but nobody is asked for a program that is gone.
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

/// Takes a copy of the handler: its owner may go while the program runs.
static void runToEnd(QProcess &process, Handler handler, Result &result)
{
    while (process.state() != QProcess::NotRunning) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (!handler)
            continue;
        // What was read in passing, while a handler waited or an answer was written, is not
        // announced by an event any more.
        do {
            converse(process, handler, result);
        } while (hasUnreadOutput(process));
    }
}

static void reportFailedStart(const QProcess &process)
{
    const QString reason =
        QObject::tr("Error: cannot start \"%1\": %2").arg(process.program(), process.errorString());
    Core::MessageManager::writeDisrupting(QStringLiteral("[E]\t%1").arg(reason));
}

Result exec(const Handler &handler, const QStringList &commandLine)
{
    // Not to be read again after the run.
    const QString shownCommandLine = commandLine.join(QLatin1Char(' '));
    if (isIdeClosing())
        return {.crashed = true, .exitCode = -1, .stdErr = {}, .stdOut = {}, .started = false};

    QProcess process;
    process.setWorkingDirectory(workingDirectory());
    process.setProgram(commandLine.value(0));
    process.setArguments(commandLine.mid(1));
    QObject::connect(
        Core::ICore::instance(), &Core::ICore::coreAboutToClose, &process, &QProcess::kill);

    Result result;
    process.start(QIODevice::ReadWrite);
    result.started = process.waitForStarted(-1);
    if (result.started)
        runToEnd(process, handler, result);
    else
        reportFailedStart(process);

    Core::MessageManager::writeSilently(
        QStringLiteral("[$] %1\t%2").arg(QString::number(process.exitCode()), shownCommandLine));
    result.crashed = process.exitStatus() == QProcess::CrashExit;
    result.exitCode = process.exitCode();
    return result;
}

} // namespace Sealkit::Internal::Command
