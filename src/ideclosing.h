#pragma once

namespace Sealkit::Internal {

/// From now on isIdeClosing() knows. The plugin calls this when it starts, before anything can run
/// or ask; an IDE that starts a plugin does not close.
void watchIdeClosing();

/// Whether the user leaves the IDE. Then nothing is started or asked any more.
bool isIdeClosing();

} // namespace Sealkit::Internal
