set(TEST_PLUGIN_DIR ${CMAKE_CURRENT_BINARY_DIR}/plugins)

sealkit_add_test(tst_pluginmanager LIBRARIES PlatformHost)
target_compile_definitions(tst_pluginmanager PRIVATE TEST_PLUGIN_DIR="${TEST_PLUGIN_DIR}")

# add_test_plugin(<id> [IID <iid>] [NEEDS <id>:<version>...] [DEFINES ...])
# Every test plugin is version 2.1.0 and serves those that were made for 2.0.0 and later.
function(add_test_plugin id)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "IID" "NEEDS;DEFINES")
    if(NOT ARG_IID)
        set(ARG_IID org.qt-project.Qt.QtCreatorPlugin)
    endif()

    set(dependencies "")
    foreach(need IN LISTS ARG_NEEDS)
        string(REPLACE ":" "\", \"Version\" : \"" need ${need})
        list(APPEND dependencies "{ \"Id\" : \"${need}\" }")
    endforeach()
    list(JOIN dependencies ", " dependencies)
    configure_file(plugins/testplugin.json.in metadata/${id}/testplugin.json)

    add_library(testplugin_${id} MODULE plugins/testplugin.cpp plugins/testplugin.h)
    target_link_libraries(testplugin_${id} PRIVATE QtCreator::ExtensionSystem)
    target_include_directories(testplugin_${id} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/metadata/${id})
    target_compile_definitions(testplugin_${id} PRIVATE
        TEST_PLUGIN_ID="${id}" TEST_PLUGIN_IID="${ARG_IID}" ${ARG_DEFINES})
    set_target_properties(testplugin_${id} PROPERTIES
        OUTPUT_NAME ${id}
        LIBRARY_OUTPUT_DIRECTORY ${TEST_PLUGIN_DIR}
        AUTOMOC_MOC_OPTIONS "-I${CMAKE_CURRENT_BINARY_DIR}/metadata/${id}")
    use_precompiled_headers(testplugin_${id})
    add_dependencies(tst_pluginmanager testplugin_${id})
endfunction()

# The files are found in the order of their names: here dependents before dependencies.
add_test_plugin(leaf NEEDS middle:2.1.0 root:2.0.5)
add_test_plugin(middle NEEDS root:2.0.0)
add_test_plugin(root)

add_test_plugin(after_refusing NEEDS refusing:2.1.0)
add_test_plugin(refusing)
add_test_plugin(needs_absent NEEDS absent:2.1.0)
add_test_plugin(needs_newer NEEDS root:2.1.1)
add_test_plugin(needs_older NEEDS root:1.9.0)
add_test_plugin(loop_one NEEDS loop_two:2.1.0)
add_test_plugin(loop_two NEEDS loop_three:2.1.0)
add_test_plugin(loop_three NEEDS loop_one:2.1.0)
add_test_plugin(after_loop NEEDS loop_one:2.1.0)
add_test_plugin(missing_symbol DEFINES TEST_PLUGIN_NEEDS_A_MISSING_SYMBOL)
add_test_plugin(no_iplugin DEFINES TEST_PLUGIN_IS_NO_IPLUGIN)
add_test_plugin(foreign IID org.example.Plugin)
