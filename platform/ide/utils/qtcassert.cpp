#include <utils/qtcassert.h>

#include <QDebug>
#include <QTime>

namespace Utils {

void writeAssertLocation(const char *msg)
{
    const QByteArray time = QTime::currentTime().toString("HH:mm:ss.zzz").toLatin1();
    if (qEnvironmentVariableIsSet("QTC_FATAL_ASSERTS"))
        qFatal("SOFT ASSERT [%s] made fatal: %s", time.constData(), msg);
    qDebug("SOFT ASSERT [%s]: %s", time.constData(), msg);
}

} // namespace Utils
