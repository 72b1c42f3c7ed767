#include "commandline.h"

#include <QCommandLineParser>
#include <QFile>

namespace Workbench {

constexpr int USAGE_ERROR = 2;

static EarlyExit usageError(const QString &reason)
{
    return {USAGE_ERROR, "workbench: " + reason + "\nTry: workbench --help"};
}

// The first line without its end; null, with the reason, when there is none.
static std::optional<QString> readPassphrase(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error =
            QString("cannot read the pass-phrase file \"%1\": %2").arg(path, file.errorString());
        return {};
    }
    QByteArray line = file.readLine();
    if (line.endsWith('\n'))
        line.chop(1);
    if (line.endsWith('\r'))
        line.chop(1);
    if (line.isEmpty()) {
        *error = QString("the pass-phrase file \"%1\" starts with an empty line").arg(path);
        return {};
    }
    return QString::fromUtf8(line);
}

std::variant<CommandLine, EarlyExit> parseCommandLine(const QStringList &arguments)
{
    const QCommandLineOption deploy(
        "deploy",
        "Deploy PROJECT without a window; ends with 0 only when its packages were signed.",
        "PROJECT");
    const QCommandLineOption sdk("sdk", "Use the SDK in DIR instead of the last one.", "DIR");
    const QCommandLineOption target("target", "Build for the target NAME.", "NAME");
    const QCommandLineOption passphraseFile(
        "passphrase-file", "Answer pass-phrase prompts with the first line of FILE.", "FILE");
    const QCommandLineOption settings("settings", "Keep settings in DIR.", "DIR");
    const QCommandLineOption checkDisplay(
        "check-display", "Open no window; end with 0 only when that would be possible.");
    const QCommandLineOption help({"h", "help"}, "Show this help.");

    QCommandLineParser parser;
    parser.setApplicationDescription("Builds and signs packages with the Sealkit plugin.\n"
                                     "A PROJECT is a folder with rpm/*.spec, or the .spec itself.");
    parser.addPositionalArgument("PROJECT", "The project to open in the window.", "[PROJECT]");
    parser.addOptions({deploy, sdk, target, passphraseFile, settings, checkDisplay, help});
    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (parser.isSet(help))
        return EarlyExit{0, parser.helpText().trimmed().replace("<executable_name>", "workbench")};

    CommandLine line;
    line.deploy = parser.isSet(deploy);
    line.checkDisplay = parser.isSet(checkDisplay);
    const QStringList projects = parser.positionalArguments() + parser.values(deploy);
    line.project = projects.value(0);
    line.sdk = parser.value(sdk);
    line.target = parser.value(target);
    line.settingsFolder = parser.value(settings);
    if (projects.size() > 1)
        return usageError("only one project can be open");
    if (parser.isSet(passphraseFile)) {
        if (!line.deploy)
            return usageError("--passphrase-file needs --deploy: a window asks by itself");
        QString error;
        line.passphrase = readPassphrase(parser.value(passphraseFile), &error);
        if (!line.passphrase)
            return usageError(error);
    }
    return line;
}

} // namespace Workbench
