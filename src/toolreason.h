#pragma once

#include "command.h"

#include <QStringList>

namespace Sealkit::Internal {

/// The lines of a tool's \a output without its prompts and what it prints while it is busy.
QStringList tellingLines(const QString &output);

/// The line of a failed tool's \a output that says why. Of the lines that openssl adds for its
/// makers only the reason is taken. Empty when there is none.
QString tellingLine(const QString &output);

/// Why a run has failed, in one line for the user.
QString whyFailed(const Command::Result &result);

} // namespace Sealkit::Internal
