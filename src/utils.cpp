#include "utils.h"

#include "constants.h"

#include <brisk/sdk.h>
#include <utils/pathchooser.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace Sealkit::Internal {

Q_LOGGING_CATEGORY(debugLog, "qtc.sealkit", QtWarningMsg)

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

QList<PackageDump> splitDumpByPackage(const QString &text)
{
    static const QRegularExpression packagePath(QStringLiteral("(\\/.*.rpm)"),
                                                QRegularExpression::InvertedGreedinessOption);
    QList<PackageDump> dumps;
    qsizetype start = 0;
    const auto endLastAt = [&](qsizetype end) {
        if (!dumps.isEmpty())
            dumps.last().dump = text.mid(start, end - start);
    };
    for (auto matches = packagePath.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        endLastAt(match.capturedStart());
        start = match.capturedStart();
        dumps << PackageDump{match.captured(1), {}};
    }
    endLastAt(text.size());
    return dumps;
}

/// The package whose file name stands first in \a line and ends at \a minEnd or later; if several
/// names start there, the longest one. Empty when there is none.
static QString packageInLine(QStringView line, qsizetype minEnd, const QStringList &packages)
{
    QString found;
    qsizetype foundAt = line.size();
    qsizetype foundSize = 0;
    for (const QString &package : packages) {
        const QString name = QLatin1Char('/') + QFileInfo(package).fileName();
        const qsizetype at = line.indexOf(name, qMax(qsizetype(0), minEnd - name.size()));
        if (at < 0 || at > foundAt || (at == foundAt && name.size() <= foundSize))
            continue;
        found = package;
        foundAt = at;
        foundSize = name.size();
    }
    return found;
}

QList<PackageDump> dumpsOfPackages(const QString &text, const QStringList &packages)
{
    QList<PackageDump> dumps;
    const QSet<QString> known(packages.begin(), packages.end());
    const QList<PackageDump> sections = splitDumpByPackage(text);
    qsizetype start = text.size();
    for (const PackageDump &section : sections)
        start -= section.dump.size();

    qsizetype lastLineStart = -1;
    for (const PackageDump &section : sections) {
        const qsizetype lineStart = text.lastIndexOf(QLatin1Char('\n'), start) + 1;
        const qsizetype nextLine = text.indexOf(QLatin1Char('\n'), start);
        const qsizetype lineEnd = nextLine < 0 ? text.size() : nextLine;
        const QString line = text.mid(lineStart, lineEnd - lineStart).remove(QLatin1Char('\r'));
        const qsizetype pathEnd = start - lineStart + section.packagePath.size();
        const QString package =
            known.contains(line) ? line : packageInLine(line, pathEnd, packages);
        const bool goesOn =
            lineStart == lastLineStart && !dumps.isEmpty() && package == dumps.last().packagePath;
        if (!package.isEmpty() && !goesOn) {
            dumps << PackageDump{package, section.dump};
            lastLineStart = lineStart;
        } else if (!dumps.isEmpty()) {
            dumps.last().dump += section.dump;
        }
        start += section.dump.size();
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
