# What the development files of the IDE would bring: its functions for building plugins, taken from
# its sources, and imported targets for its installed libraries.
include_guard(GLOBAL)

# The IDE looks for plugins, libraries and data where its own ones are.
set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE})
set(CMAKE_INSTALL_LIBEXECDIR libexec)
include(GNUInstallDirs)

include(${CMAKE_CURRENT_LIST_DIR}/QtCreatorIDEBranding.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/QtCreatorAPI.cmake)

include(CMakeFindDependencyMacro)
find_dependency(Qt6 ${IDE_QT_VERSION_MIN} COMPONENTS Concurrent Core Core5Compat Gui Network Widgets)

set(_ide_sources ${CMAKE_CURRENT_LIST_DIR}/../../../src)
set(_ide_libraries /usr/${CMAKE_INSTALL_LIBDIR}/qtcreator)

# The installed libraries have no links without a version.
function(_import_ide_library name file)
    add_library(QtCreator::${name} SHARED IMPORTED)
    set_target_properties(QtCreator::${name} PROPERTIES
        IMPORTED_LOCATION ${_ide_libraries}/${file}
        INTERFACE_LINK_LIBRARIES "${ARGN}"
        INTERFACE_INCLUDE_DIRECTORIES
            "${_ide_sources}/libs;${_ide_sources}/plugins")
endfunction()

function(_import_ide_plugin name)
    _import_ide_library(${name} plugins/lib${name}.so ${ARGN})
    set_target_properties(QtCreator::${name} PROPERTIES QTC_PLUGIN_VERSION ${IDE_VERSION})
endfunction()

# Utils holds the task trees, too.
_import_ide_library(Utils libUtils.so.${IDE_VERSION}
    Qt6::Concurrent Qt6::Core5Compat Qt6::Network Qt6::Widgets)
_import_ide_library(Aggregation libAggregation.so.${IDE_VERSION} Qt6::Core)
_import_ide_library(ExtensionSystem libExtensionSystem.so.${IDE_VERSION}
    QtCreator::Utils Qt6::Widgets)
_import_ide_plugin(Core QtCreator::Aggregation QtCreator::ExtensionSystem QtCreator::Utils)
_import_ide_plugin(ProjectExplorer QtCreator::Core)
