option(SEALKIT_SANITIZE "Build with the address and undefined behaviour sanitizers" OFF)
option(SEALKIT_FUZZ "Build the fuzzers of fuzz/, with clang" OFF)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Werror)

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
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
