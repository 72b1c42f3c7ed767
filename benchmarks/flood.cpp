#include "flood.h"

#include "comparison.h"
#include "files.h"
#include "rpmsignexternal.h"

#include <host/generalmessages.h>

#include <QSettings>

namespace Benchmarks {

constexpr char BRISK_PATH_KEY[] = "Kiln.BriskPath";

Flood::Flood(qint64 bytes)
    : m_lineCount(bytes / LINE_LENGTH)
{
    writeScript(tool(), "exec " FAKE_TOOL " lines:" + QByteArray::number(m_lineCount) + '\n');
    QSettings().setValue(BRISK_PATH_KEY, tool());
}

Flood::~Flood()
{
    QSettings().remove(BRISK_PATH_KEY);
}

void Flood::capture() const
{
    qint64 messages = 0;
    QObject sink;
    QObject::connect(Core::Host::GeneralMessages::instance(),
                     &Core::Host::GeneralMessages::messageWritten,
                     &sink,
                     [&messages] { ++messages; });
    Sealkit::Internal::RpmsignExternal backEnd(nullptr);
    const auto result = backEnd.dumpSignature({}, {});
    require(result.succeeded() && result.stdOut.size() == size(), "output got lost");
    // A line that comes in two pieces is two messages, and the run is one of its own.
    require(messages > m_lineCount, "messages got lost");
}

} // namespace Benchmarks
