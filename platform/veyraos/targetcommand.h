#pragma once

#include <veyraos/veyraos_global.h>

#include <QStringList>

namespace Kiln::Internal {

/// The command line that runs \a words, a program and its arguments, in a build target.
VEYRAOS_EXPORT QStringList commandInTarget(const QString &target, const QStringList &words);

} // namespace Kiln::Internal
