sealkit_add_test(tst_tasking LIBRARIES QtCreator::Tasking)
sealkit_add_test(tst_projectexplorer LIBRARIES QtCreator::ProjectExplorer)
sealkit_add_test(tst_veyraos LIBRARIES QtCreator::Brisk QtCreator::ProjectExplorer
    QtCreator::VeyraOS)
