#include <host/pluginspec.h>

#include <extensionsystem/iplugin.h>

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>

namespace ExtensionSystem {

static QString tr(const char *text)
{
    return QCoreApplication::translate("QtC::ExtensionSystem", text);
}

PluginSpec::PluginSpec(const QString &filePath)
    : m_loader(filePath)
{
    const QJsonObject metaData = m_loader.metaData();
    if (metaData["IID"] == QLatin1String("org.qt-project.Qt.QtCreatorPlugin"))
        readMetaData(metaData["MetaData"].toObject());
}

void PluginSpec::readMetaData(const QJsonObject &pluginMetaData)
{
    m_id = pluginMetaData["Id"].toString();
    m_name = pluginMetaData["Name"].toString(m_id);
    m_version = pluginMetaData["Version"].toString();
    for (const QJsonValue &dependency : pluginMetaData["Dependencies"].toArray())
        m_dependencies << dependency["Id"].toString();
    m_state = Read;
}

bool PluginSpec::resolveDependencies(const QList<PluginSpec *> &specs)
{
    if (hasError())
        return false;
    for (const QString &dependency : std::as_const(m_dependencies)) {
        const auto found = std::find_if(specs.begin(), specs.end(), [&](const PluginSpec *spec) {
            return spec->id() == dependency;
        });
        if (found == specs.end())
            return fail(
                tr("It depends on the plugin \"%1\", which is not installed.").arg(dependency));
        m_dependencySpecs.append(*found);
    }
    m_state = Resolved;
    return true;
}

bool PluginSpec::checkDependencies()
{
    for (const PluginSpec *spec : std::as_const(m_dependencySpecs)) {
        if (spec->hasError())
            return fail(tr("It depends on the plugin \"%1\", which failed: %2")
                            .arg(spec->id(), spec->errorString()));
    }
    return true;
}

bool PluginSpec::load()
{
    if (m_state != Resolved || hasError() || !checkDependencies())
        return false;

    QObject *instance = m_loader.instance();
    if (!instance)
        return fail(tr("It cannot be loaded: %1").arg(m_loader.errorString()));
    m_plugin = qobject_cast<IPlugin *>(instance);
    if (!m_plugin) {
        fail(tr("Its class \"%1\" is not derived from the class of all plugins, IPlugin.")
                 .arg(QString::fromUtf8(instance->metaObject()->className())));
        delete instance;
        return false;
    }
    m_state = Loaded;
    return true;
}

bool PluginSpec::initialize(const QStringList &arguments)
{
    if (m_state != Loaded || !checkDependencies())
        return false;

    QString reason;
    if (!m_plugin->initialize(arguments, &reason))
        return fail(tr("Its initialization failed: %1")
                        .arg(reason.isEmpty() ? tr("it gives no reason.") : reason));
    m_state = Initialized;
    return true;
}

void PluginSpec::extensionsInitialized()
{
    if (m_state != Initialized)
        return;
    m_plugin->extensionsInitialized();
    m_state = Running;
}

void PluginSpec::stop()
{
    if (m_state != Running)
        return;
    m_plugin->aboutToShutdown();
    m_state = Stopped;
}

void PluginSpec::kill()
{
    if (!m_plugin)
        return;
    delete m_plugin; // the library stays: others may still hold what is in its code
    m_plugin = nullptr;
    m_state = Deleted;
}

bool PluginSpec::fail(const QString &reason)
{
    m_errorString = reason;
    return false;
}

} // namespace ExtensionSystem
