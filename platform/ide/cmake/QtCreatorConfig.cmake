# Stands in for the package file of the IDE's SDK: the same variables and
# functions; the QtCreator::* targets are those of this build.
set(IDE_VERSION 16.0.0)
set(IDE_VERSION_COMPAT 16.0.0)
set(IDE_PLUGIN_PATH lib/qtcreator/plugins)
set(IDE_LIBRARY_PATH lib/qtcreator)
set(IDE_DATA_PATH share/qtcreator)

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets)

include_guard(GLOBAL)
include(GNUInstallDirs)

# ${IDE_PLUGIN_DEPENDENCIES}: the metadata member that names the plugins depended on.
function(_qtc_plugin_dependencies out)
    set(entries "")
    foreach(dependency IN LISTS ARGN)
        string(REGEX REPLACE "^QtCreator::" "" id ${dependency})
        string(TOLOWER ${id} id)
        list(APPEND entries
            "        { \"Id\" : \"${id}\", \"Version\" : \"${IDE_VERSION}\" }")
    endforeach()
    list(JOIN entries ",\n" entries)
    set(${out} "\"Dependencies\" : [\n${entries}\n    ]" PARENT_SCOPE)
endfunction()

# What export headers look for: BRISK_LIBRARY for Brisk.
function(_qtc_define_library target)
    string(TOUPPER ${target}_LIBRARY definition)
    target_compile_definitions(${target} PRIVATE ${definition})
endfunction()

function(add_qtc_library target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "EXCLUDE_FROM_INSTALL" "" "DEPENDS;PUBLIC_DEPENDS;SOURCES;INCLUDES;PUBLIC_INCLUDES")
    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(QtCreator::${target} ALIAS ${target})
    target_include_directories(${target} PRIVATE ${ARG_INCLUDES} PUBLIC ${ARG_PUBLIC_INCLUDES})
    target_link_libraries(${target} PRIVATE ${ARG_DEPENDS} PUBLIC ${ARG_PUBLIC_DEPENDS})
    _qtc_define_library(${target})
    set_target_properties(${target} PROPERTIES
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${IDE_LIBRARY_PATH})
    use_precompiled_headers(${target})
endfunction()

function(add_qtc_plugin target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG
        "SKIP_INSTALL"
        "VERSION;COMPAT_VERSION"
        "PLUGIN_DEPENDS;DEPENDS;PUBLIC_DEPENDS;SOURCES;INCLUDES;PUBLIC_INCLUDES;PROPERTIES")
    _qtc_plugin_dependencies(IDE_PLUGIN_DEPENDENCIES ${ARG_PLUGIN_DEPENDS})
    configure_file(${CMAKE_CURRENT_SOURCE_DIR}/${target}.json.in
                   ${CMAKE_CURRENT_BINARY_DIR}/${target}.json)

    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(QtCreator::${target} ALIAS ${target})
    target_include_directories(${target}
        PRIVATE ${CMAKE_CURRENT_BINARY_DIR} ${ARG_INCLUDES} PUBLIC ${ARG_PUBLIC_INCLUDES})
    target_link_libraries(${target}
        PRIVATE ${ARG_DEPENDS} PUBLIC ${ARG_PLUGIN_DEPENDS} ${ARG_PUBLIC_DEPENDS})
    _qtc_define_library(${target})
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_TO_ASCII QT_RESTRICTED_CAST_FROM_ASCII QT_USE_QSTRINGBUILDER)
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${IDE_PLUGIN_PATH}
        AUTOMOC_MOC_OPTIONS "-I${CMAKE_CURRENT_BINARY_DIR}"
        ${ARG_PROPERTIES})
    use_precompiled_headers(${target})
    if(NOT ARG_SKIP_INSTALL)
        install(TARGETS ${target} LIBRARY DESTINATION ${IDE_PLUGIN_PATH})
    endif()
endfunction()
