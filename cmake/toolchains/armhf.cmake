# SPDX-License-Identifier: MIT

# Builds for the controller, 32-bit ARM, with Debian's cross compiler; runs the results in an
# emulator.
#
# ARMHF_SYSROOT: the folder that scripts/armhf-sysroot prints.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ARMHF_SYSROOT)
if(NOT ARMHF_SYSROOT)
    message(FATAL_ERROR
        "ARMHF_SYSROOT does not say where the armhf system is: use scripts/test-armhf, or "
        "-DARMHF_SYSROOT=$(scripts/armhf-sysroot)")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_SYSROOT ${ARMHF_SYSROOT})
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static -L ${ARMHF_SYSROOT})

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
