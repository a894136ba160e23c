# SPDX-License-Identifier: MIT

# What the project cannot be built without; says what to install or to change.

set(oldest_GNU 8)
set(oldest_Clang 10)
set(oldest ${oldest_${CMAKE_CXX_COMPILER_ID}})
if(NOT oldest OR CMAKE_CXX_COMPILER_VERSION VERSION_LESS oldest)
    message(FATAL_ERROR
        "The compiler ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} is not supported: "
        "install GCC ${oldest_GNU} or Clang ${oldest_Clang}, or newer, and name it by "
        "-DCMAKE_CXX_COMPILER=... in an empty build folder")
endif()

find_package(Qt5 5.15 QUIET COMPONENTS Core DBus)
if(NOT Qt5_FOUND)
    if(Qt5Core_FOUND)
        set(problem "Qt ${Qt5Core_VERSION} is there, but its D-Bus module is missing")
    elseif(Qt5_CONSIDERED_VERSIONS)
        list(REMOVE_DUPLICATES Qt5_CONSIDERED_VERSIONS)
        list(JOIN Qt5_CONSIDERED_VERSIONS ", " versions)
        set(problem "Qt 5.15 is needed, but what is there is Qt ${versions}")
    else()
        set(problem "Qt 5.15 is needed, and no Qt 5 is found")
    endif()
    message(FATAL_ERROR
        "${problem}: install Qt 5.15 with Core and D-Bus (Debian: qtbase5-dev), and name its folder "
        "by -DCMAKE_PREFIX_PATH=... if it is not the system's")
endif()

if(LIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN)
    find_package(libtavelorn QUIET)
    if(NOT libtavelorn_FOUND)
        message(FATAL_ERROR
            "No libtavelorn is found: install it, name its folder by -DCMAKE_PREFIX_PATH=..., or "
            "take the project's own by -DLIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN=OFF")
    endif()
endif()
