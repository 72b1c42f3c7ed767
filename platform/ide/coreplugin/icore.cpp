#include <coreplugin/icore.h>

#include <host/application.h>

#include <QApplication>
#include <QMainWindow>
#include <QPointer>

namespace Core {

static QPointer<QMainWindow> theMainWindow;
static Utils::FilePath theResourcePath;

void Host::setMainWindow(QMainWindow *window)
{
    theMainWindow = window;
}

void Host::setResourcePath(const Utils::FilePath &path)
{
    theResourcePath = path;
}

ICore *ICore::instance()
{
    static ICore theInstance;
    return &theInstance;
}

QMainWindow *ICore::mainWindow()
{
    return theMainWindow;
}

QWidget *ICore::dialogParent()
{
    QWidget *modal = QApplication::activeModalWidget();
    return modal ? modal : theMainWindow.data();
}

void ICore::raiseWindow(QWidget *widget)
{
    if (!widget)
        return;
    QWidget *window = widget->window();
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->raise();
    window->activateWindow();
}

Utils::FilePath ICore::resourcePath(const QString &rel)
{
    return theResourcePath.pathAppended(rel);
}

} // namespace Core
