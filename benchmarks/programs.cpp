#include "comparison.h"
#include "workplace.h"

#include <QDirIterator>
#include <QProcess>

namespace Benchmarks {

static void run(QProcess &process, const QStringList &words)
{
    process.start(words.first(), words.mid(1));
    require(process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit
                && process.exitCode() == 0,
            words.first() + " failed: " + process.readAllStandardError());
}

QByteArray outputOf(const QStringList &words, const QString &workingDirectory)
{
    QProcess process;
    process.setWorkingDirectory(workingDirectory);
    run(process, words);
    return process.readAllStandardOutput();
}

double timeOf(const QStringList &words)
{
    return milliseconds([&words] {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        run(process, words);
    });
}

QString buildDemoPackage(const Workplace &workplace)
{
    const QString project = workplace.sdk().workspace() + "/hello-veyra";
    const QString topFolder = "_topdir " + project + "/.rpmbuild";
    const QString folder = "_rpmdir " + project + "/RPMS";
    const QStringList build{
        "rpmbuild", "-bb", "--build-in-place", "--define", topFolder, "--define", folder};
    outputOf(build + QStringList("rpm/hello-veyra.spec"), project);
    QDirIterator packages(
        project + "/RPMS", {"hello-veyra-1*.rpm"}, QDir::Files, QDirIterator::Subdirectories);
    return packages.next();
}

} // namespace Benchmarks
