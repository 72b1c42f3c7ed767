# The files that the IDE gets, and what people read: translations, pictures, guide.
add_test(NAME check-install
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check-install ${CMAKE_COMMAND} ${PROJECT_BINARY_DIR})
