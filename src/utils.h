#pragma once

#include <utils/fancylineedit.h>
#include <utils/filepath.h>
#include <utils/storekey.h>

#include <QLoggingCategory>
#include <QStringList>

namespace Brisk {
class BuildEngine;
}

namespace Utils {
class PathChooser;
}

namespace Sealkit::Internal {

/// For developers. Silent unless the rule "qtc.sealkit.debug=true" asks for it.
Q_DECLARE_LOGGING_CATEGORY(debugLog)

/// The engine whose targets and workspace this plugin takes where no kit names one. Null when the
/// SDK has none.
Brisk::BuildEngine *firstBuildEngine();

/// What a chooser of an existing file needs; the texts are in the user's language.
struct ChooserSetup
{
    QString title;                                    ///< of the dialog to browse in
    Utils::FancyLineEdit::ValidationFunction isValid; ///< alone judges the path
    QString filter = QString();                       ///< of the dialog to browse in
    QString placeholderText = QString();
    Utils::Key historyKey = Utils::Key(); ///< without one, no history is kept
    QString toolTip = QString();
};
void initPathChooser(Utils::PathChooser *chooser, const ChooserSetup &setup);

/// Sets a tool tip that lasts: the chooser's own is where verdicts on the path take its place.
void setLastingToolTip(Utils::PathChooser *chooser, const QString &toolTip);

/// The folder of the regular keys: the one in the workspace if it is there, else the SDK
/// installation's.
QString getDefaultKeysDir(const Utils::FilePath &workspace);
/// The regular key and its certificate; the files need not be there.
Utils::FilePath getDefaultKey(const Utils::FilePath &workspace);
Utils::FilePath getDefaultCertificate(const Utils::FilePath &workspace);

/// Lets the global key and certificate in the settings follow the \a workspace, where the user has
/// chosen the regular ones.
void followRegularKeys(const Utils::FilePath &workspace);

/// Whether the text of \a file begins with that of \a directory; so a sibling whose name begins
/// with the directory's name counts, too. Nothing lies in an empty directory.
bool isFileChildOf(const QString &file, const Utils::FilePath &directory);

/// Whether \a path lies in \a workspace; otherwise \a error, if given, is a text for the user.
bool isInWorkspace(const QString &path, const Utils::FilePath &workspace, QString *error);

/// \a paths as tools can open them: a file that is reached through a link, but lies in
/// \a workspace, gets its path there. Any other path stays as it is.
QStringList pathsInWorkspace(const QStringList &paths, const Utils::FilePath &workspace);

/// One text per signature in a dump, each beginning at its "Subject". The length of a text is the
/// position of the next signature in the dump. So each text but the first goes on into the text of
/// the signatures after it.
QStringList midDumpOutput(const QString &text);

/// The absolute paths of the packages in the folder of \a path, in the file system's order; \a path
/// need not exist. Kept for other callers: this plugin signs only what a build has made.
QStringList getRpmListFrom(const QString &path);

/// What a dump says of one of the packages it was asked about.
struct PackageDump
{
    QString packagePath;
    QString dump;

    friend bool operator==(const PackageDump &, const PackageDump &) = default;
};

/// Cuts a dump of several packages at each line that names one of \a packages. What stands before
/// the first such line is left out; lines that name other paths stay where they stand.
QList<PackageDump> dumpsOfPackages(const QString &text, const QStringList &packages);

/// Which kinds of signatures a dump shows.
struct SignGroups
{
    bool developer = false;
    bool client = false;

    friend bool operator==(const SignGroups &, const SignGroups &) = default;
};

SignGroups signGroups(const QString &dump);

} // namespace Sealkit::Internal
