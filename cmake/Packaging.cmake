# What is installed is the plugin, its translations and its guide. The archive holds the same, laid out to be
# unpacked into the folder of an IDE.
set(CPACK_GENERATOR TGZ)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_PACKAGE_VENDOR "Sealkit Team")
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
