#pragma once

#include "heldinput.h"

#include <QPointer>
#include <QProgressDialog>
#include <QStringList>
#include <QTimer>

#include <memory>

namespace Sealkit::Internal {

class SignTool;

/// Stands between the user and the IDE while a deploy step runs its tool. The run keeps the event
/// loop turning from within the IDE's task tree, and whoever cancels the deploy or closes the
/// project then would delete the tree under it. So the user's input is held back, and when the run
/// takes longer a modal window says what is being signed and offers to stop \a tool. Where the IDE
/// has no window there is no user to wait for, and nothing is held or shown.
class SignProgress : public QObject
{
    Q_OBJECT

public:
    SignProgress(SignTool *tool, const QStringList &packages);
    ~SignProgress() override;

private:
    void showWindow();

    const QPointer<SignTool> m_tool;
    const QStringList m_packages;
    std::unique_ptr<HeldInput> m_heldInput;
    QPointer<QProgressDialog> m_window;
    QTimer m_timer;
};

} // namespace Sealkit::Internal
