#pragma once

class QString;

namespace Sealkit::Internal {

// What the General Messages get from runs, each kind of line with its own mark. Once the IDE closes
// nothing is written, because the panes may be gone.

/// One line on a run that has ended.
void logRun(int exitCode, const QString &commandLine);
/// A line that a tool has printed.
void logOutput(const QString &line);
void logWarning(const QString &line);
/// Brings the General Messages forward.
void logError(const QString &line);

} // namespace Sealkit::Internal
