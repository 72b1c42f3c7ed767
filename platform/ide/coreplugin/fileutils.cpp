#include <coreplugin/fileutils.h>

#include <coreplugin/icore.h>

#include <QCoreApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QUrl>

namespace Core {

static QString tr(const char *text)
{
    return QCoreApplication::translate("QtC::Core", text);
}

void FileUtils::showInGraphicalShell(const Utils::FilePath &path)
{
    const Utils::FilePath folder = path.isDir() ? path : path.parentDir();
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(folder.toFSPathString())))
        return;

    auto box = new QMessageBox(
        QMessageBox::Warning,
        tr("Cannot Show Folder"),
        tr("The file browser cannot be opened on \"%1\".").arg(folder.toUserOutput()),
        QMessageBox::Ok,
        ICore::dialogParent());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace Core
