#include "ownprogram.h"

#include <QProcess>
#include <QTest>

constexpr char IS_OWN_PROGRAM[] = "SEALKIT_TEST_RUNS_ALONE";
constexpr int TIMEOUT = 100'000;

bool ranInOwnProgram()
{
    if (qEnvironmentVariableIsSet(IS_OWN_PROGRAM))
        return false;
    QString test = QTest::currentTestFunction();
    if (QTest::currentDataTag())
        test += ':' + QLatin1String(QTest::currentDataTag());

    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(IS_OWN_PROGRAM, "1");
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    program.start(QCoreApplication::applicationFilePath(), {test});
    [&] { QVERIFY(program.waitForFinished(TIMEOUT) && program.exitCode() == 0); }();
    return true;
}
