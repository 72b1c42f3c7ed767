#include "fuzzing.h"

#include <QApplication>

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
    new QApplication(*argc, *argv); // until whoever calls this deletes it
    return 0;
}
