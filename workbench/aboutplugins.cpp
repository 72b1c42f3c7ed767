#include "aboutplugins.h"

#include <extensionsystem/pluginmanager.h>
#include <host/pluginspec.h>

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

using ExtensionSystem::PluginSpec;

namespace Workbench {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(Workbench::AboutPlugins)
};

static QString stateText(const PluginSpec &spec)
{
    if (spec.hasError())
        return Tr::tr("Not usable");
    return spec.state() == PluginSpec::Running ? Tr::tr("Running") : Tr::tr("Not started");
}

static QTreeWidget *makeList()
{
    auto *list = new QTreeWidget;
    list->setRootIsDecorated(false);
    list->setWordWrap(true);
    list->setHeaderLabels(
        {Tr::tr("Plugin"), Tr::tr("Version"), Tr::tr("State"), Tr::tr("Description or Error")});
    for (const PluginSpec *spec : ExtensionSystem::PluginManager::plugins()) {
        const QString note = spec->hasError() ? spec->errorString() : spec->description();
        auto *item =
            new QTreeWidgetItem(list, {spec->name(), spec->version(), stateText(*spec), note});
        item->setToolTip(3, note);
    }
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    return list;
}

void showAboutPlugins(QWidget *parent)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(Tr::tr("About Plugins"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(makeList());
    layout->addWidget(buttons);
    dialog.resize(760, 300);
    dialog.exec();
}

} // namespace Workbench
