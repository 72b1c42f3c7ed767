# What is installed, and what people read.
add_test(NAME check-install
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-install ${CMAKE_COMMAND} ${PROJECT_BINARY_DIR})

find_package(Qt6 6.4 REQUIRED COMPONENTS LinguistTools)
sealkit_add_test(tst_translations LIBRARIES PluginTestSupport)
target_compile_definitions(tst_translations PRIVATE
    LUPDATE="$<TARGET_FILE:Qt6::lupdate>"
    SOURCES="${PROJECT_SOURCE_DIR}/src"
    USER_GUIDE="${PROJECT_SOURCE_DIR}/docs/user-guide.md"
    TRANSLATIONS="${PROJECT_SOURCE_DIR}/translations"
    RESOURCES="${PROJECT_BINARY_DIR}/share/qtcreator")
add_dependencies(tst_translations Sealkit)

sealkit_add_test(tst_pictures LIBRARIES Qt6::Gui)
target_compile_definitions(tst_pictures PRIVATE
    PROJECT="${PROJECT_SOURCE_DIR}"
    WORKBENCH_EXECUTABLE="$<TARGET_FILE:workbench>")
add_dependencies(tst_pictures workbench Sealkit)
