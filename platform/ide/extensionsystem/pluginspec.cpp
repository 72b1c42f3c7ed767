#include <host/pluginspec.h>

#include <extensionsystem/iplugin.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QVersionNumber>

#include <algorithm>

namespace ExtensionSystem {

static QString tr(const char *text)
{
    return QCoreApplication::translate("QtC::ExtensionSystem", text);
}

// "16.0.0_1": the number after the underscore counts like one after another dot.
static QVersionNumber parsedVersion(QString version)
{
    return QVersionNumber::fromString(version.replace('_', '.')).normalized();
}

static QString joinedText(const QJsonValue &textOrLines)
{
    if (!textOrLines.isArray())
        return textOrLines.toString();
    return textOrLines.toVariant().toStringList().join('\n');
}

static QList<PluginDependency> readDependencies(const QJsonArray &array)
{
    QList<PluginDependency> dependencies;
    for (const QJsonValue &value : array)
        dependencies.append({value["Id"].toString(), value["Version"].toString()});
    return dependencies;
}

PluginSpec::PluginSpec(const QString &filePath)
    : m_loader(filePath)
{
    const QJsonObject metaData = m_loader.metaData();
    if (metaData["IID"] == QLatin1String("org.qt-project.Qt.QtCreatorPlugin"))
        readMetaData(metaData["MetaData"].toObject());
}

bool PluginSpec::readMetaData(const QJsonObject &pluginMetaData)
{
    m_id = pluginMetaData["Id"].toString();
    m_name = pluginMetaData["Name"].toString(m_id);
    m_version = pluginMetaData["Version"].toString();
    m_compatVersion = pluginMetaData["CompatVersion"].toString(m_version);
    m_description = joinedText(pluginMetaData["Description"]);
    m_dependencies = readDependencies(pluginMetaData["Dependencies"].toArray());

    if (m_id.isEmpty())
        return fail(tr("The metadata of \"%1\" names no id.").arg(m_loader.fileName()));
    if (m_version.isEmpty())
        return fail(tr("The metadata of \"%1\" names no version.").arg(m_loader.fileName()));
    m_state = Read;
    return true;
}

bool PluginSpec::provides(const QString &id, const QString &version) const
{
    const QVersionNumber wanted = parsedVersion(version);
    return m_id == id && parsedVersion(m_compatVersion) <= wanted
           && wanted <= parsedVersion(m_version);
}

bool PluginSpec::resolveDependencies(const QList<PluginSpec *> &specs)
{
    if (hasError())
        return false;
    for (const PluginDependency &dependency : std::as_const(m_dependencies)) {
        const auto found = std::find_if(specs.begin(), specs.end(), [&](const PluginSpec *spec) {
            return spec->id() == dependency.id;
        });
        if (found == specs.end())
            return fail(tr("It depends on the plugin \"%1\" (%2), which is not installed.")
                            .arg(dependency.id, dependency.version));
        if (!(*found)->provides(dependency.id, dependency.version))
            return fail(tr("It depends on version %2 of the plugin \"%1\", but %3 is installed, "
                           "which is compatible back to %4.")
                            .arg(dependency.id,
                                 dependency.version,
                                 (*found)->m_version,
                                 (*found)->m_compatVersion));
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
