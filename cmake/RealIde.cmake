# The real IDE's package file, or an error that says why it cannot be used.

# Without a version: the package has no version file, and find_package would refuse it.
find_package(QtCreator QUIET COMPONENTS Core)

set(how_to_get_on
    "CMAKE_PREFIX_PATH or QtCreator_DIR must name an IDE with its development files. \
-DSEALKIT_FOR_IDE=OFF builds with the stand-ins of platform/ instead.")
if(NOT QtCreator_FOUND)
    set(reason "there is no QtCreatorConfig.cmake in \"${CMAKE_PREFIX_PATH}\"")
    if(QtCreator_NOT_FOUND_MESSAGE)
        set(reason "${QtCreator_NOT_FOUND_MESSAGE}")
    elseif(QtCreator_CONSIDERED_CONFIGS)
        set(reason "\"${QtCreator_CONSIDERED_CONFIGS}\" was refused")
    endif()
    message(FATAL_ERROR "The IDE cannot be used: ${reason}.\n${how_to_get_on}")
endif()
if(IDE_VERSION VERSION_LESS 16 OR IDE_VERSION VERSION_GREATER_EQUAL 17)
    message(FATAL_ERROR "The IDE in \"${QtCreator_DIR}\" cannot be used: its version is \
\"${IDE_VERSION}\", and the plugin is made for 16.\n${how_to_get_on}")
endif()
message(STATUS "Building for the IDE ${IDE_VERSION} in ${QtCreator_DIR}")
