#include "fuzzing.h"

#include <QApplication>
#include <QFontMetrics>

#include <cstdlib>

static QtMessageHandler defaultHandler = nullptr;

static void
dropDebugMessages(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg)
        defaultHandler(type, context, message);
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // It looks for no fonts, which takes half of the time of a widget that nobody sees.
    qputenv("QT_QPA_PLATFORM", "minimal");
    qputenv("QTC_FATAL_ASSERTS", "1");
    defaultHandler = qInstallMessageHandler(dropDebugMessages);
    new QApplication(*argc, *argv);
    // What Qt makes for fonts at first use is emptied by the application, and must outlive it.
    (void)QFontMetrics(QFont()).height();
    std::atexit([] { delete qApp; });
    return 0;
}
