#pragma once

namespace Core::Constants {

constexpr char C_GLOBAL[] = "Global Context";
constexpr char M_FILE[] = "QtCreator.Menu.File";
constexpr char M_EDIT[] = "QtCreator.Menu.Edit";
constexpr char M_TOOLS[] = "QtCreator.Menu.Tools";
constexpr char M_HELP[] = "QtCreator.Menu.Help";

} // namespace Core::Constants
