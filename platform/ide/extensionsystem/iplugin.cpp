#include <extensionsystem/iplugin.h>

namespace ExtensionSystem {

bool IPlugin::initialize(const QStringList &, QString *)
{
    initialize();
    return true;
}

} // namespace ExtensionSystem
