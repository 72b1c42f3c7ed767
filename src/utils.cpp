#include "utils.h"

#include "constants.h"

#include <brisk/sdk.h>
#include <utils/pathchooser.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>

namespace Sealkit::Internal {

Q_LOGGING_CATEGORY(debugLog, "qtc.sealkit", QtWarningMsg)

Brisk::BuildEngine *firstBuildEngine()
{
    const QList<Brisk::BuildEngine *> engines = Brisk::Sdk::buildEngines();
    return engines.isEmpty() ? nullptr : engines.first();
}

void initPathChooser(Utils::PathChooser *chooser, const ChooserSetup &setup)
{
    chooser->setExpectedKind(Utils::PathChooser::File);
    chooser->setPromptDialogFilter(setup.filter);
    chooser->setPromptDialogTitle(setup.title);
    if (!setup.historyKey.isEmpty())
        chooser->setHistoryCompleter(setup.historyKey);
    chooser->lineEdit()->setPlaceholderText(setup.placeholderText);
    chooser->setValidationFunction(setup.isValid);
    // A new chooser judges its empty text by its own rule from the event loop, and that verdict
    // would stay until the next change.
    QMetaObject::invokeMethod(
        chooser->lineEdit(), &Utils::FancyLineEdit::validate, Qt::QueuedConnection);
    setLastingToolTip(chooser, setup.toolTip);
}

void setLastingToolTip(Utils::PathChooser *chooser, const QString &toolTip)
{
    chooser->QWidget::setToolTip(toolTip);
}

QString getDefaultKeysDir(const Utils::FilePath &workspace)
{
    const Utils::FilePath workspaceKeys =
        workspace
        / (QLatin1Char('/') + QLatin1String(Constants::PREINSTALL_KEY_FOLDER_UNDER_WORKSPACE));
    if (workspaceKeys.exists())
        return workspaceKeys.toFSPathString();
    return Brisk::Sdk::installationPath() + QLatin1Char('/')
           + QLatin1String(Constants::PREINSTALL_KEY_FOLDER);
}

static Utils::FilePath defaultKeysFile(const Utils::FilePath &workspace, const char *fileName)
{
    return Utils::FilePath::fromString(getDefaultKeysDir(workspace) + QLatin1Char('/')
                                       + QLatin1String(fileName));
}

Utils::FilePath getDefaultKey(const Utils::FilePath &workspace)
{
    return defaultKeysFile(workspace, Constants::PREINSTALL_KEY_NAME);
}

Utils::FilePath getDefaultCertificate(const Utils::FilePath &workspace)
{
    return defaultKeysFile(workspace, Constants::PREINSTALL_CERT_NAME);
}

void followRegularKeys(const Utils::FilePath &workspace)
{
    using namespace Constants;
    QSettings settings;
    const auto follow = [&settings](const char *useDefaultKey,
                                    const char *pathKey,
                                    const Utils::FilePath &regularPath) {
        if (settings.value(QLatin1String(useDefaultKey), false).toBool())
            settings.setValue(QLatin1String(pathKey), regularPath.toFSPathString());
    };
    follow(USE_DEFAULT_SIGNKEY_KEY, GLOBAL_SIGNKEY_KEY, getDefaultKey(workspace));
    follow(USE_DEFAULT_SIGNCERT_KEY, GLOBAL_SIGNCERT_KEY, getDefaultCertificate(workspace));
}

static Qt::CaseSensitivity hostFileNameCase()
{
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    return Qt::CaseInsensitive;
#else
    return Qt::CaseSensitive;
#endif
}

bool isFileChildOf(const QString &file, const Utils::FilePath &directory)
{
    if (directory.isEmpty())
        return false;
    return QDir::toNativeSeparators(file).startsWith(
        QDir::toNativeSeparators(directory.toFSPathString()), hostFileNameCase());
}

bool isInWorkspace(const QString &path, const Utils::FilePath &workspace, QString *error)
{
    if (isFileChildOf(path, workspace))
        return true;
    if (error) {
        *error = QObject::tr("The path must be inside workspace folder:\n%1")
                     .arg(workspace.toUserOutput());
    }
    return false;
}

static QString pathInWorkspace(const QString &path, const Utils::FilePath &workspace)
{
    if (isFileChildOf(path, workspace))
        return path;
    const QString folder = QFileInfo(workspace.toFSPathString()).canonicalFilePath();
    const QString place = QFileInfo(path).canonicalFilePath();
    return folder.isEmpty() || !place.startsWith(folder + QLatin1Char('/'))
               ? path
               : workspace.toFSPathString() + place.mid(folder.size());
}

QStringList pathsInWorkspace(const QStringList &paths, const Utils::FilePath &workspace)
{
    QStringList inside;
    for (const QString &path : paths)
        inside << pathInWorkspace(path, workspace);
    return inside;
}

QStringList midDumpOutput(const QString &text)
{
    static const QRegularExpression subject(QStringLiteral("(Subject.*)"));
    QList<qsizetype> starts;
    for (auto matches = subject.globalMatch(text); matches.hasNext();)
        starts << matches.next().capturedStart();

    QStringList blocks;
    for (qsizetype i = 0; i < starts.size(); ++i)
        blocks << text.mid(starts.at(i), starts.value(i + 1, text.size()));
    return blocks;
}

QStringList getRpmListFrom(const QString &path)
{
    const QFileInfoList packages = QFileInfo(path).absoluteDir().entryInfoList(
        {QStringLiteral("*.rpm")}, QDir::Files, QDir::NoSort);
    QStringList paths;
    for (const QFileInfo &package : packages)
        paths << package.absoluteFilePath();
    return paths;
}

/// The package that \a line of a dump names: the one whose path it is, or else the one whose file
/// name ends last in it, since a target may see the folder under another path. Empty when there is
/// none.
static QString packageNamedIn(const QString &line, const QStringList &packages)
{
    if (packages.contains(line))
        return line;
    QString found;
    qsizetype foundEnd = 0;
    for (const QString &package : packages) {
        const QString name = QLatin1Char('/') + QFileInfo(package).fileName();
        const qsizetype at = line.lastIndexOf(name);
        if (at >= 0 && at + name.size() > foundEnd) {
            found = package;
            foundEnd = at + name.size();
        }
    }
    return found;
}

// Of "/w/a.rpm" and "/w/b.rpm", "/w/a.rpm\r\nSubject: x\r\nGroup: client\r\n/w/b.rpm\r\n" gives the
// first three lines for the one, and the last line for the other.
QList<PackageDump> dumpsOfPackages(const QString &text, const QStringList &packages)
{
    QList<PackageDump> dumps;
    qsizetype end = 0;
    for (qsizetype start = 0; start < text.size(); start = end) {
        const qsizetype lineEnd = text.indexOf(QLatin1Char('\n'), start);
        end = lineEnd < 0 ? text.size() : lineEnd + 1;
        const QString line = text.mid(start, end - start);
        const QString package = packageNamedIn(line.trimmed(), packages);
        if (!package.isEmpty())
            dumps << PackageDump{package, {}};
        if (!dumps.isEmpty())
            dumps.last().dump += line;
    }
    return dumps;
}

// "Group: developer\r\nSubgroup: regular\r\n" is signed by a developer.
SignGroups signGroups(const QString &dump)
{
    static const QRegularExpression group(QStringLiteral("(?:Group: )(.*?)[\r\n]+"));
    SignGroups groups;
    for (auto matches = group.globalMatch(dump); matches.hasNext();) {
        const QString name = matches.next().captured(1);
        groups.developer |= name == QLatin1String("developer");
        groups.client |= name == QLatin1String("client");
    }
    return groups;
}

} // namespace Sealkit::Internal
