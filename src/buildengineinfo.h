#pragma once

#include <utils/filepath.h>

#include <QObject>
#include <QStringList>

#include <stop_token>

namespace Sealkit::Internal {

/// The workspace of the first build engine, and the names of its targets once the engine has been
/// started.
class BuildEngineInfo : public QObject
{
    Q_OBJECT

public:
    /// Why there are no targets.
    enum Problem { NoEngine, NotStarted, NoTargets };
    Q_ENUM(Problem)

    /// The workspace is known at once; the first update() waits for the event loop.
    explicit BuildEngineInfo(QObject *parent);
    ~BuildEngineInfo() override;

    /// Empty when there is no engine.
    Utils::FilePath sharedSrcPath() const { return m_sharedSrcPath; }
    void setTargets(const QStringList &targets);

public slots:
    /// Starts the engine and reads its targets; they stay as they are when it cannot be started.
    void update();

signals:
    void targetsChanged(const QStringList &targets);
    void updateFailed(Sealkit::Internal::BuildEngineInfo::Problem problem);

private:
    Utils::FilePath m_sharedSrcPath;
    QStringList m_targets;
    std::stop_source m_stop; ///< ends the start of the engine when this object is deleted
};

} // namespace Sealkit::Internal
