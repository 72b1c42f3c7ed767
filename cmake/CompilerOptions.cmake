option(SEALKIT_SANITIZE "Build with the address and undefined behaviour sanitizers" OFF)
option(SEALKIT_FUZZ "Build the fuzzers of fuzz/, with clang" OFF)
option(SEALKIT_WARNINGS_ARE_ERRORS "As developers and CI have it" OFF)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow)
if(SEALKIT_WARNINGS_ARE_ERRORS)
    add_compile_options(-Werror)
endif()

if(SEALKIT_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()

if(SEALKIT_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # What it takes for ccache to know sources that use precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endif()
