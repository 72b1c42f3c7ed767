#pragma once

class QWidget;

namespace Workbench {

/// Shows every plugin that was found, how far it got, and why no further.
void showAboutPlugins(QWidget *parent);

} // namespace Workbench
