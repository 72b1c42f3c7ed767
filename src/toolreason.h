#pragma once

#include "command.h"

#include <QStringList>

namespace Sealkit::Internal {

/// The lines of a tool's \a output without its prompts and the dots that it prints as progress.
QStringList tellingLines(const QString &output);

/// The line of a failed tool's \a output that says why it failed; empty when there is none. From
/// openssl's lines with error codes only the reason is taken.
QString tellingLine(const QString &output);

/// Why a run has failed, in one line for the user.
QString whyFailed(const Command::Result &result);

} // namespace Sealkit::Internal
