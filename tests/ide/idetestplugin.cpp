#include "idetestplugin.h"

#include "idetest.h"

#include <coreplugin/icore.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>

#include <QMainWindow>
#include <QTest>
#include <QTimer>

void IdeTestPlugin::extensionsInitialized()
{
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &IdeTestPlugin::runWhenProjectIsOpen);
    timer->start(200);
}

void IdeTestPlugin::runWhenProjectIsOpen()
{
    const ProjectExplorer::Project *project = ProjectExplorer::ProjectManager::startupProject();
    if (!project || !project->activeTarget() || !Core::ICore::mainWindow()->isActiveWindow())
        return;
    sender()->deleteLater();

    IdeTest test;
    QStringList arguments{"SealkitIdeTest", "-o", qEnvironmentVariable("SEALKIT_IDE_LOG") + ",tap"};
    arguments += qEnvironmentVariable("SEALKIT_IDE_TEST").split(',');
    QTest::qExec(&test, arguments);
    Core::ICore::exit();
}
