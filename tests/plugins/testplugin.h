#pragma once

#include <extensionsystem/iplugin.h>

#ifdef TEST_PLUGIN_IS_NO_IPLUGIN
using TestPluginBase = QObject;
#else
using TestPluginBase = ExtensionSystem::IPlugin;
#endif

/// Writes down each call as "<id>.<function>" in the application's property "calls". What else it
/// does, or fails to do, is chosen by TEST_PLUGIN_... definitions.
class TestPlugin : public TestPluginBase
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TEST_PLUGIN_IID FILE "testplugin.json")

#ifndef TEST_PLUGIN_IS_NO_IPLUGIN
public:
    ~TestPlugin() override;
    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;
    ShutdownFlag aboutToShutdown() override;
#endif
};
