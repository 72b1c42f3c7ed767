#pragma once

#include <QObject>
#include <QStringList>

namespace ExtensionSystem {

/// Base class of every plugin; see PluginManager for when its functions are called.
class IPlugin : public QObject
{
    Q_OBJECT

public:
    enum ShutdownFlag { SynchronousShutdown };

    /// Registers what the plugin offers. False marks the plugin as failed for the reason in
    /// \a errorString.
    virtual bool initialize(const QStringList &arguments, QString *errorString);
    /// Called when all plugins that depend on this one are initialized.
    virtual void extensionsInitialized() {}
    virtual ShutdownFlag aboutToShutdown() { return SynchronousShutdown; }

protected:
    virtual void initialize() {}
};

} // namespace ExtensionSystem
