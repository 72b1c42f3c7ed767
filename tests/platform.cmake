sealkit_add_test(tst_tasking LIBRARIES QtCreator::Tasking)
sealkit_add_test(tst_projectexplorer LIBRARIES PluginTestSupport)
# GCC 12 takes the empty storage of a copied std::function for a fault when it optimizes.
target_compile_options(tst_projectexplorer PRIVATE -Wno-maybe-uninitialized)
sealkit_add_test(tst_veyraos LIBRARIES PluginTestSupport)
