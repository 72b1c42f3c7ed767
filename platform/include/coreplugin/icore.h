#pragma once

#include <utils/filepath.h>

#include <QObject>

class QMainWindow;
class QWidget;

namespace Core {

/// The application around the plugins.
class ICore : public QObject
{
    Q_OBJECT

public:
    static ICore *instance();

    /// Null while the application runs without a window.
    static QMainWindow *mainWindow();
    /// The active modal dialog, or the main window: the parent for new dialogs.
    static QWidget *dialogParent();
    /// Brings the window of \a widget to the front.
    static void raiseWindow(QWidget *widget);
    /// A path inside the application's shared data.
    static Utils::FilePath resourcePath(const QString &rel = {});

signals:
    /// The user leaves; nothing can stop that any more.
    void coreAboutToClose();

private:
    ICore() = default;
};

} // namespace Core
