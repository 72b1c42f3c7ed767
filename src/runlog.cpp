#include "runlog.h"

#include "ideclosing.h"

#include <coreplugin/messagemanager.h>

#include <QString>

namespace Sealkit::Internal {

static void write(void (*writeMessage)(const QString &), const QString &message)
{
    if (!isIdeClosing())
        writeMessage(message);
}

void logRun(int exitCode, const QString &commandLine)
{
    write(Core::MessageManager::writeSilently,
          QStringLiteral("[$] %1\t%2").arg(QString::number(exitCode), commandLine));
}

void logOutput(const QString &line)
{
    write(Core::MessageManager::writeSilently, QLatin1String("[I]\t") + line);
}

void logWarning(const QString &line)
{
    write(Core::MessageManager::writeSilently, QLatin1String("[W]\t") + line);
}

void logError(const QString &line)
{
    write(Core::MessageManager::writeDisrupting, QLatin1String("[E]\t") + line);
}

} // namespace Sealkit::Internal
