#pragma once

#include <utils/fancylineedit.h>
#include <utils/filepath.h>

#include <QLoggingCategory>
#include <QStringList>

namespace Utils {
class PathChooser;
}

namespace Sealkit::Internal {

/// What only developers want to know. Silent unless the rule "qtc.sealkit.debug=true" asks for it.
Q_DECLARE_LOGGING_CATEGORY(debugLog)

/// Lets \a function alone judge the path. A new chooser is about to tell what it makes of its empty
/// text, and that would stay until the next change.
void setValidation(Utils::PathChooser *chooser,
                   const Utils::FancyLineEdit::ValidationFunction &function);

/// The folder of the regular keys: the one in the workspace if it is there, else the SDK
/// installation's.
QString getDefaultKeysDir(const Utils::FilePath &workspace);
/// The regular key and its certificate; the files need not be there.
Utils::FilePath getDefaultKey(const Utils::FilePath &workspace);
Utils::FilePath getDefaultCertificate(const Utils::FilePath &workspace);

/// Whether the text of \a file begins with that of \a directory; so a sibling whose name begins
/// with the directory's name counts, too. Nothing lies in an empty directory.
bool isFileChildOf(const QString &file, const Utils::FilePath &directory);

/// One text per signature in a dump, each beginning at its "Subject". A text ends as many
/// characters after its begin as the next signature lies from the dump's begin, so that all but the
/// first run on into what follows.
QStringList midDumpOutput(const QString &text);

/// The packages in the folder of \a path, which itself need not exist; absolute, in the file
/// system's order.
QStringList getRpmListFrom(const QString &path);

/// What a dump says of one of the packages it was asked about.
struct PackageDump
{
    QString packagePath;
    QString dump;

    friend bool operator==(const PackageDump &, const PackageDump &) = default;
};

/// Cuts a dump of several packages where a line names the next one. A path ends at its first "rpm",
/// which may be in the name of a folder.
QList<PackageDump> splitDumpByPackage(const QString &text);

/// The same with only the paths of \a packages, which the dump was asked for: a cut at anything
/// else belongs to the package it lies in.
QList<PackageDump> dumpsOfPackages(const QString &text, const QStringList &packages);

/// Whose signatures a dump shows.
struct SignGroups
{
    bool developer = false;
    bool client = false;

    friend bool operator==(const SignGroups &, const SignGroups &) = default;
};

SignGroups signGroups(const QString &dump);

} // namespace Sealkit::Internal
