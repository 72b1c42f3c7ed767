# Drives the real program, and its window's parts in this process.
sealkit_add_test(tst_workbench LIBRARIES WorkbenchShell)
target_compile_definitions(tst_workbench PRIVATE
    WORKBENCH_EXECUTABLE="$<TARGET_FILE:workbench>")
add_dependencies(tst_workbench workbench Sealkit)
