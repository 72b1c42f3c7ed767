#pragma once

namespace Kiln::Constants {

constexpr char KILN_TOOLS_MENU[] = "Kiln.Tools.Menu";
constexpr char KILN_OPTIONS_CATEGORY[] = "W.Kiln";
constexpr char KILN_DEVICE_TYPE[] = "Kiln.Device.Type";
constexpr char KILN_OPTIONS_CATEGORY_ICON[] = ":/veyraos/images/settingscategory_kiln.png";

} // namespace Kiln::Constants
