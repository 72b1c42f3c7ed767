#pragma once

namespace Sealkit::Internal {

/// From now on isIdeClosing() knows. The plugin calls this before anything can run or ask.
void watchIdeClosing();

/// Whether the user leaves the IDE. Then nothing is started or asked any more.
bool isIdeClosing();

} // namespace Sealkit::Internal
