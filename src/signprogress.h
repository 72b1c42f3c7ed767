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
/// loop turning within a handler of the IDE's task tree. A user who cancelled the deploy or closed
/// the project now would delete the tree while its handler runs. So the user's input is held back,
/// and when the run takes longer, a modal window says what is being signed and offers to stop the
/// tool. Where the IDE has no window, nothing is held or shown.
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
