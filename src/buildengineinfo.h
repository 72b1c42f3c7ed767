#pragma once

#include <utils/filepath.h>

#include <QObject>
#include <QStringList>

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
};

} // namespace Sealkit::Internal
