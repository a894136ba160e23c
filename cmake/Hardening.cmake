# SPDX-License-Identifier: MIT

# Makes a memory error stop a program rather than be of use to somebody, and a missing symbol an
# error of the build. For what this folder and those below it build.

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_compile_options(-fstack-protector-strong)
# It needs optimisation, and a packager may have chosen a level.
if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
    add_compile_definitions($<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:_FORTIFY_SOURCE=2>)
endif()

add_link_options(
    LINKER:--as-needed
    LINKER:-z,relro
    LINKER:-z,now
    LINKER:-z,noexecstack)
# The sanitizers' symbols are in the program, not in the libraries.
string(FIND "${CMAKE_CXX_FLAGS}" "-fsanitize=" sanitizer_position)
string(COMPARE GREATER_EQUAL ${sanitizer_position} 0 is_sanitized)
if(NOT is_sanitized)
    add_link_options(LINKER:--no-undefined)
endif()
