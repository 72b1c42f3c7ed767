#include "idetest.h"

#include "dialogdriver.h"
#include "files.h"
#include "processes.h"
#include "rpmpackage.h"
#include "user.h"

#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <coreplugin/icore.h>
#include <coreplugin/modemanager.h>
#include <extensionsystem/pluginmanager.h>
#include <extensionsystem/pluginspec.h>
#include <projectexplorer/buildmanager.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectexplorer.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <projectexplorer/taskhub.h>
#include <utils/infobar.h>
#include <utils/pathchooser.h>

#include <QSignalSpy>
#include <QTest>
#include <QtWidgets>

using namespace ProjectExplorer;

constexpr int ROUNDS = 20;

static QAction *action(const Utils::Id &id)
{
    const Core::Command *command = Core::ActionManager::command(id);
    return command ? command->action() : nullptr;
}

static QList<BuildStep *> deploySteps(const Target *target)
{
    return target->activeDeployConfiguration()->stepList()->steps();
}

static QStringList stepIds(const Target *target)
{
    QStringList ids;
    for (const BuildStep *step : deploySteps(target))
        ids << step->id().toString();
    return ids;
}

template<class Widget>
static Widget *child(const QWidget *parent, const char *name)
{
    auto *found = parent->findChild<Widget *>(name);
    if (!found)
        qFatal("There is no %s", name);
    return found;
}

static void enter(const QWidget *parent, const char *chooser, const QString &path)
{
    child<Utils::PathChooser>(parent, chooser)->lineEdit()->setText(path);
}

QString IdeTest::inWorkspace(const QString &path) const
{
    return m_sdk + "/workspace/" + path;
}

BuildStep *IdeTest::signStep() const
{
    return deploySteps(ProjectManager::startupTarget()).value(1);
}

// The tool of the SDK is behind a script that looks into a file for what to do.
void IdeTest::setToolBehaviour(const QString &behaviour) const
{
    QFile::remove(m_sdk + "/busy");
    writeFile(m_sdk + "/behaviour", behaviour.toUtf8() + '\n');
}

bool IdeTest::toolIsBusy() const
{
    return QFile::exists(m_sdk + "/busy");
}

void IdeTest::init()
{
    setToolBehaviour({});
}

void IdeTest::startDeploy()
{
    m_output.clear();
    for (BuildStep *step : deploySteps(ProjectManager::startupTarget())) {
        step->disconnect(this);
        connect(
            step, &BuildStep::addOutput, this, [this](const QString &text) { m_output << text; });
    }
    action("ProjectExplorer.Deploy")->trigger();
}

bool IdeTest::waitForDeploy()
{
    QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
    return finished.wait(RUN_TIMEOUT) && finished.constFirst().constFirst().toBool();
}

QString IdeTest::lastOutput() const
{
    return m_output.mid(m_output.size() - 15).join('\n');
}

void IdeTest::pluginsRun()
{
    QStringList running;
    for (const ExtensionSystem::PluginSpec *spec : ExtensionSystem::PluginManager::plugins()) {
        const bool isOurs = spec->id() == "sealkit" || spec->id() == "veyraos";
        if (isOurs && spec->state() == ExtensionSystem::PluginSpec::Running && !spec->hasError())
            running << spec->id();
    }
    running.sort();
    QCOMPARE(running, (QStringList{"sealkit", "veyraos"}));
}

void IdeTest::kitsHaveNoWarning()
{
    QStringList names;
    for (const Kit *kit : KitManager::kits()) {
        if (!kit->id().toString().startsWith("Kiln.Kit."))
            continue;
        names << kit->displayName();
        for (const Task &problem : kit->validate())
            QVERIFY2(false, qPrintable(kit->displayName() + ": " + problem.description()));
    }
    names.sort();
    QCOMPARE(names,
             (QStringList{"VeyraOS-3.4-x86_64", "VeyraOS-4.0-x86_64", "VeyraOS-5.1-x86_64"}));
}

void IdeTest::signStepFollowsRpmStep()
{
    const Target *target = ProjectManager::startupTarget();
    QCOMPARE(target->kit()->displayName(), QString("VeyraOS-5.1-x86_64"));
    QCOMPARE(stepIds(target), (QStringList{"Kiln.Kb2RpmBuildStep", "Sealkit.RpmSignExternalStep"}));
    QVERIFY(signStep()->stepEnabled());
}

void IdeTest::customerSignStepIsOff()
{
    Project *project = ProjectManager::startupProject();
    Target *target = project->addTargetForKit(KitManager::kit("Kiln.Kit.VeyraOS-4.0-x86_64"));
    QVERIFY(target);
    QCOMPARE(stepIds(target), (QStringList{"Kiln.Kb2RpmBuildStep", "Sealkit.RpmSignStep"}));
    QVERIFY(!deploySteps(target).at(1)->stepEnabled());
    QVERIFY(project->removeTarget(target));
}

void IdeTest::deploySigns()
{
    startDeploy();
    QVERIFY2(waitForDeploy(), qPrintable(lastOutput()));
    QDirIterator packages(
        inWorkspace("hello-veyra/RPMS"), {"*.rpm"}, QDir::Files, QDirIterator::Subdirectories);
    int count = 0;
    while (packages.hasNext()) {
        const QString words = "engine exec -tt sb2 -t VeyraOS-5.1-x86_64 rpmsign-external verify";
        QProcess brisk;
        brisk.setProcessChannelMode(QProcess::MergedChannels);
        brisk.start(m_sdk + "/bin/brisk", words.split(' ') << packages.next());
        QVERIFY(brisk.waitForFinished());
        const QString said = QString::fromUtf8(brisk.readAll());
        QVERIFY2(brisk.exitCode() == 0, qPrintable(said + lastOutput()));
        ++count;
    }
    QCOMPARE(count, 3);
}

void IdeTest::dialogSignsVerifiesDumpsAndRemoves()
{
    const Core::ActionContainer *menu = Core::ActionManager::actionContainer("Kiln.Tools.Menu");
    QVERIFY(menu && menu->menu()->actions().contains(action("Sealkit.SignDialog")));
    action("Sealkit.SignDialog")->trigger();
    DialogDriver user;
    user.open(Core::ICore::mainWindow()->findChild<QDialog *>("SignDialog"));
    user.choose("m_comboBoxBuildTargets", "VeyraOS-5.1-x86_64");
    writePackage(inWorkspace("package.rpm"));
    user.enter("rpmPathChooser", inWorkspace("package.rpm"));
    user.click("regularKeysButton");
    user.click("addSignaturePushButton");
    user.click("verifySignaturePushButton");
    QCOMPARE(user.text("verifyLabel"), QString("Signatures successfully verified"));
    user.click("dumpPushButton");
    QVERIFY2(user.dump().contains("Regular Developer"), qPrintable(user.dump()));
    user.click("removeSignaturePushButton");
    user.click("dumpPushButton");
    QCOMPARE(user.dump(), QString("No signatures found in package"));
    user.dialog->close();
    user.dialog.clear(); // which the plugin keeps
}

void IdeTest::inOptions(const std::function<void(QWidget *)> &act) const
{
    bool isDone = false;
    const Once whenShown(
        [] {
            const QWidget *dialog = QApplication::activeModalWidget();
            return dialog && dialog->findChild<QWidget *>("enableSignStepCheckBox");
        },
        [&] {
            QWidget *dialog = QApplication::activeModalWidget();
            act(dialog);
            isDone = true;
            child<QDialogButtonBox>(dialog, "")->button(QDialogButtonBox::Cancel)->click();
        });
    Core::ICore::showOptionsDialog("Z.SignOptions");
    QTRY_VERIFY(isDone);
}

void IdeTest::optionsAreApplied()
{
    const auto stored = [] { return QSettings().value("Sealkit.DefaultSign", true).toBool(); };
    const auto change = [&](bool isChecked, bool isApplied) {
        inOptions([&](QWidget *dialog) {
            auto *checkBox = child<QCheckBox>(dialog, "enableSignStepCheckBox");
            QCOMPARE(checkBox->isChecked(), stored());
            checkBox->setChecked(isChecked);
            if (isApplied)
                child<QDialogButtonBox>(dialog, "")->button(QDialogButtonBox::Apply)->click();
        });
    };
    QVERIFY(stored());
    change(false, true);
    QVERIFY(!stored());
    change(true, false);
    QVERIFY(!stored());
    change(true, true);
    QVERIFY(stored());
    inOptions([](QWidget *dialog) {
        const QString text = child<QCheckBox>(dialog, "enableSignStepCheckBox")->text();
        dialog->findChild<QLineEdit *>()->setText(QString(text).remove('&'));
        QTRY_COMPARE(dialog->findChild<QListView *>()->model()->rowCount(), 1);
    });
}

void IdeTest::failedToolIsAnIssue()
{
    setToolBehaviour("fail");
    QSignalSpy tasks(&taskHub(), &TaskHub::taskAdded);
    startDeploy();
    waitForDeploy();
    QStringList errors;
    for (const QList<QVariant> &arguments : std::as_const(tasks)) {
        const auto task = arguments.constFirst().value<Task>();
        if (task.type == Task::Error)
            errors << task.description();
    }
    QVERIFY2(!errors.isEmpty(), qPrintable(lastOutput()));
}

void IdeTest::deployAsksForPassPhrase()
{
    QWidget *widget = signStep()->doCreateConfigWidget();
    child<QComboBox>(widget, "keysTypeComboBox")->setCurrentIndex(1);
    enter(widget, "keyPathChooser", inWorkspace("keys/encrypted_key.pem"));
    enter(widget, "certificatePathChooser", inWorkspace("keys/encrypted_cert.pem"));
    delete widget;

    int prompts = 0;
    const Answers answers([&prompts](QWidget *window) {
        const auto *edit = window->findChild<QLineEdit *>();
        if (!edit || edit->echoMode() != QLineEdit::Password || !edit->text().isEmpty())
            return;
        ++prompts;
        typeLine("demo");
    });
    startDeploy();
    QVERIFY2(waitForDeploy(), qPrintable(lastOutput()));
    QVERIFY(prompts > 0);
    QCOMPARE(m_output.filter("successfully").size(), 1);
}

void IdeTest::stepIsRestored()
{
    QCOMPARE(stepIds(ProjectManager::startupTarget()),
             (QStringList{"Kiln.Kb2RpmBuildStep", "Sealkit.RpmSignExternalStep"}));
    const std::unique_ptr<QWidget> widget(signStep()->doCreateConfigWidget());
    QCOMPARE(child<QComboBox>(widget.get(), "keysTypeComboBox")->currentIndex(), 1);
    const auto *chooser = child<Utils::PathChooser>(widget.get(), "keyPathChooser");
    QCOMPARE(chooser->lineEdit()->text(), inWorkspace("keys/encrypted_key.pem"));
    QTest::qWait(1000); // a verdict may come late
    QVERIFY2(chooser->isValid(), qPrintable(chooser->errorMessage()));
}

void IdeTest::textsAreGerman()
{
    QCOMPARE(action("Sealkit.SignDialog")->text().remove('&'), QString("Pakete signieren"));
    inOptions([](QWidget *dialog) {
        const auto *box = child<QCheckBox>(dialog, "enableSignStepCheckBox");
        QVERIFY2(!box->text().contains("sign step"), qPrintable(box->text()));
    });
}

// The IDE asks whether it shall stop what it is doing: yes. The plugin's own window offers to
// cancel the tool: please.
static void stopEverything(const QWidget *window)
{
    const auto *question = qobject_cast<const QMessageBox *>(window);
    for (QPushButton *button : window->findChildren<QPushButton *>()) {
        const bool stops = question ? question->buttonRole(button) == QMessageBox::AcceptRole
                                    : button->text().remove('&') == "Cancel";
        if (stops && button->isVisible()) {
            clickOn(button);
            return;
        }
    }
}

void IdeTest::interruptDeploys(const QString &keys,
                               const std::function<bool()> &isOver,
                               const std::function<void()> &check)
{
    const Answers answers(stopEverything);
    for (int round = 1; round <= ROUNDS; ++round) {
        setToolBehaviour("wait");
        const Once interrupt([this] { return toolIsBusy(); }, [&keys] { pressKeys(keys); });
        startDeploy();
        QTRY_VERIFY2_WITH_TIMEOUT(toolIsBusy() && isOver(),
                                  qPrintable(QString("round %1: ").arg(round) + lastOutput()),
                                  RUN_TIMEOUT);
        QTRY_COMPARE(processesOf(m_sdk + "/engine/") + processesOf(m_sdk + "/bin/"), QStringList());
        QTest::qWait(500); // keys that were held back must not meet the next deploy or project
        check();
        if (QTest::currentTestFailed())
            return;
    }
}

void IdeTest::deployIsCanceled()
{
    const auto isOver = [] { return !BuildManager::isBuilding(); };
    interruptDeploys("alt+BackSpace", isOver, [this] {
        QCOMPARE(m_output.filter("Package sign stopped by user").size(), 1);
    });
}

void IdeTest::projectIsClosed()
{
    const Utils::FilePath file = ProjectManager::startupProject()->projectFilePath();
    Core::ActionManager::command("ProjectExplorer.Unload")
        ->setKeySequences({QKeySequence("Ctrl+Alt+Shift+U")});
    const auto isOver = [] { return ProjectManager::projects().isEmpty(); };
    interruptDeploys(
        "ctrl+alt+shift+u", isOver, [&file] { QVERIFY(ProjectExplorerPlugin::openProject(file)); });
}

void IdeTest::ideIsClosed()
{
    bool isClosing = false;
    connect(
        Core::ICore::instance(), &Core::ICore::coreAboutToClose, this, [&] { isClosing = true; });
    setToolBehaviour("wait");
    const Answers answers(stopEverything);
    const Once close([this] { return toolIsBusy(); }, [] { pressKeys("ctrl+q"); });
    startDeploy();
    QTRY_VERIFY_WITH_TIMEOUT(isClosing, RUN_TIMEOUT);
}

static void take(const QString &name)
{
    QTest::qWait(1000); // until all is laid out and painted
    const QString path = qEnvironmentVariable("SEALKIT_IDE_PICTURES") + '/' + name;
    QVERIFY2(Core::ICore::mainWindow()->grab().save(path), qPrintable(path));
}

/// For the user guide.
void IdeTest::picturesAreTaken()
{
    Core::ICore::infoBar()->clear();
    Core::ICore::mainWindow()->resize(1200, 800);
    startDeploy();
    QVERIFY2(waitForDeploy(), qPrintable(lastOutput()));
    action("QtCreator.Pane.CompileOutput")->trigger();
    take("ide-compile-output.png");

    action("QtCreator.Pane.CompileOutput")->trigger();
    Core::ModeManager::activateMode("Project");
    // The deploy steps are on the page "Run" of the active kit.
    const auto trees = Core::ICore::mainWindow()->findChildren<QTreeView *>();
    for (QTreeView *tree : trees) {
        const QAbstractItemModel *model = tree->model();
        if (!tree->isVisible() || !model)
            continue;
        const QModelIndexList pages = model->match(
            model->index(0, 0), Qt::DisplayRole, "Run", -1, Qt::MatchExactly | Qt::MatchRecursive);
        for (const QModelIndex &page : pages) {
            if (page.parent().data().toString().contains("VeyraOS-5.1"))
                emit tree->activated(page);
        }
    }
    take("ide-deploy-steps.png");
}
