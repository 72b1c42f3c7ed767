#include "buildengineinfo.h"

#include "command.h"
#include "utils.h"

#include <brisk/buildengine.h>

#include <QTimer>

namespace Sealkit::Internal {

BuildEngineInfo::BuildEngineInfo(QObject *parent)
    : QObject(parent)
{
    QTimer::singleShot(0, this, &BuildEngineInfo::update);
    if (const Brisk::BuildEngine *engine = firstBuildEngine())
        m_sharedSrcPath = engine->sharedSrcPath();
}

BuildEngineInfo::~BuildEngineInfo()
{
    m_stop.request_stop();
}

void BuildEngineInfo::update()
{
    const std::stop_token stop = m_stop.get_token();
    const Command::Result result =
        Command::exec({}, Command::compose<Command::brisk::engine::start>(), stop);
    if (stop.stop_requested())
        return; // this object has gone

    const Brisk::BuildEngine *engine = firstBuildEngine();
    if (!engine) {
        emit updateFailed(NoEngine);
    } else if (!result.succeeded()) {
        emit updateFailed(NotStarted);
    } else {
        setTargets(engine->buildTargetOrigins());
        if (m_targets.isEmpty())
            emit updateFailed(NoTargets);
    }
}

void BuildEngineInfo::setTargets(const QStringList &targets)
{
    if (targets == m_targets)
        return;
    m_targets = targets;
    emit targetsChanged(m_targets);
}

} // namespace Sealkit::Internal
