#include "targetcommand.h"

#include <veyraos/kilnsettings.h>

namespace Kiln::Internal {

QStringList commandInTarget(const QString &target, const QStringList &words)
{
    return QStringList{KilnSettings::briskPath(), "engine", "exec", "-tt", "sb2", "-t", target}
           + words;
}

} // namespace Kiln::Internal
