#include "faultyground.h"

#include "files.h"

#include <brisk/installation.h>
#include <projectexplorer/project.h>
#include <utils/pathchooser.h>
#include <utils/utilsicons.h>

#include <QDialog>
#include <QDir>
#include <QDirIterator>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTest>
#include <QTextEdit>

#include <sys/resource.h>

constexpr int TIMEOUT = 20'000;

FaultyGround::~FaultyGround()
{
    closeProject();
}

void FaultyGround::openProject(const QString &targetName)
{
    m_target = targetName;
    project = m_workplace.openProject(targetName);
    packages = m_workplace.makePackages(project, {"a.rpm", "b c.rpm"});
    QDir().mkpath(inWorkspace("own"));
}

void FaultyGround::closeProject()
{
    endFaults();
    delete dialog;
    m_workplace.closeProjects();
    QSettings().clear();
    QDir(inWorkspace("own")).removeRecursively();
    takeTexts();
}

QString FaultyGround::makeFile(const QString &name, const QByteArray &contents) const
{
    writeFile(inWorkspace("own/" + name), contents);
    return inWorkspace("own/" + name);
}

QMap<QString, QByteArray> FaultyGround::projectFiles() const
{
    QMap<QString, QByteArray> files;
    QDirIterator entries(project->projectDirectory().toFSPathString(),
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        files.insert(path, entries.fileInfo().isDir() ? "a folder" : readFile(path));
    }
    return files;
}

int FaultyGround::runTool(const QStringList &words) const
{
    return QProcess::execute(m_workplace.sdk().path() + "/bin/brisk",
                             QStringList{"engine", "exec", "-tt", "sb2", "-t", m_target} + words);
}

void FaultyGround::setBrisk(const QString &path) const
{
    QSettings().setValue("Kiln.BriskPath", path);
}

void FaultyGround::inBrisk(const QByteArray &script) const
{
    const QString path = m_scripts.filePath("brisk");
    writeScript(path,
                "case \" $* \" in *' sign '* | *' --binaries-key '*)\n" + script
                    + "\n;; esac\nexec '" + m_workplace.sdk().path().toUtf8()
                    + "/bin/brisk' \"$@\"\n");
    setBrisk(path);
}

void FaultyGround::inTool(const QString &name, const QByteArray &pattern, const QByteArray &script)
{
    const QString tool = m_workplace.sdk().tool(name, m_target);
    moveAway(tool);
    writeScript(tool,
                "PATH=$PATH:/usr/bin:/bin\ncase $1 in " + pattern + ")\n" + script
                    + "\n;; esac\nexec \"$0.away\" \"$@\"\n");
}

void FaultyGround::inSignTool(const QByteArray &script)
{
    inTool(QFileInfo(signTool()).fileName(), "sign | --binaries-key", script);
}

QString FaultyGround::signTool() const
{
    const bool isCustomers = m_target == CUSTOMER_TARGET;
    return m_workplace.sdk().tool(isCustomers ? "customer-sign" : "rpmsign-external", m_target);
}

void FaultyGround::moveAway(const QString &path)
{
    QVERIFY(QFile::rename(path, path + ".away"));
    m_ends << [path] {
        QFile::remove(path);
        QFile::rename(path + ".away", path);
    };
}

void FaultyGround::closeSdk()
{
    Brisk::closeInstallation();
    m_ends << [this] {
        QString error;
        QVERIFY(
            Brisk::openInstallation(Utils::FilePath::fromString(m_workplace.sdk().path()), &error));
    };
}

void FaultyGround::useUpFileHandles()
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    m_ends << [limit] { setrlimit(RLIMIT_NOFILE, &limit); };
    QFile next("/dev/null");
    QVERIFY(next.open(QIODevice::ReadOnly));
    limit.rlim_cur = rlim_t(next.handle()) + 3;
    setrlimit(RLIMIT_NOFILE, &limit);
}

void FaultyGround::endFaults()
{
    for (const auto &end : std::exchange(m_ends, {}))
        end();
}

void FaultyGround::openDialog(QDialog *newDialog)
{
    dialog = newDialog;
    dialog->show();
    const auto isUp = [this, status = dialog->findChild<QStatusBar *>()] {
        static const QRegularExpression failedStart("cannot start|\\] [^0]+\t.* engine start$");
        m_said += m_messages.take();
        return status->currentMessage().isEmpty() || !m_said.filter(failedStart).isEmpty();
    };
    QTRY_VERIFY_WITH_TIMEOUT(isUp(), TIMEOUT);
}

void FaultyGround::enter(const QString &pathChooser, const QString &path) const
{
    dialog->findChild<Utils::PathChooser *>(pathChooser)->lineEdit()->setText(path);
}

void FaultyGround::click(const QString &button) const
{
    auto *busyIndicator = dialog->findChild<QWidget *>("busyIndicator");
    QCoreApplication::processEvents();
    QTRY_VERIFY_WITH_TIMEOUT(busyIndicator->isHidden(), TIMEOUT);
    dialog->findChild<QPushButton *>(button)->click();
    QTRY_VERIFY_WITH_TIMEOUT(busyIndicator->isHidden(), TIMEOUT);
}

static QStringList shownBy(const QDialog *dialog)
{
    QStringList texts{dialog->findChild<QStatusBar *>()->currentMessage()};
    for (const QLabel *label : dialog->findChildren<QLabel *>()) {
        const QImage image = label->pixmap().toImage();
        if (image == Utils::Icons::OK.pixmap().toImage())
            texts << label->objectName() + " OK";
        if (image == Utils::Icons::BROKEN.pixmap().toImage())
            texts << label->objectName() + " BROKEN";
        texts << label->text();
    }
    for (const QTextEdit *edit : dialog->findChildren<QTextEdit *>())
        texts << edit->toPlainText();
    return texts;
}

QStringList FaultyGround::takeTexts()
{
    const QStringList shown = dialog ? shownBy(dialog) : QStringList();
    return shown + std::exchange(m_said, {}) + m_messages.take();
}
