#pragma once

namespace Sealkit::Internal {

/// Makes isIdeClosing() false until the IDE closes. The plugin calls this when it starts, before
/// any tool can run or ask.
void watchIdeClosing();

/// Whether the IDE is closing. Then no tool is started and the user is not asked any more.
bool isIdeClosing();

} // namespace Sealkit::Internal
