# SPDX-License-Identifier: MIT

# What the project's installed libraries have in common: Qt's conventions, hidden visibility, a
# version and the installation with a CMake package and a pkg-config file.
#
# name: the target, the package and the folder of the headers.
# TARGET: the target as users name it, name::name unless given.
# DESCRIPTION: one line on what the library is for.
# INCLUDE_DIR: the folder that holds the folder of the public headers.
# PACKAGES: packages that a user of this one needs as well, as find_dependency takes them.
# PKG_CONFIG_REQUIRES: the same, as pkg-config names them.
function(configure_installed_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg ""
        "DESCRIPTION;INCLUDE_DIR;PKG_CONFIG_REQUIRES;TARGET" "PACKAGES")
    if(NOT arg_TARGET)
        set(arg_TARGET ${name}::${name})
    endif()
    string(REGEX MATCH "^(.+::)(.+)$" _ ${arg_TARGET})
    set(namespace ${CMAKE_MATCH_1})

    add_library(${arg_TARGET} ALIAS ${name})
    set_target_properties(${name} PROPERTIES
        EXPORT_NAME ${CMAKE_MATCH_2}
        PREFIX "" # the name has it already
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})

    install(TARGETS ${name} EXPORT ${name}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    install(DIRECTORY ${arg_INCLUDE_DIR}/${name} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

    set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${name})
    install(EXPORT ${name} NAMESPACE ${namespace} FILE ${name}-targets.cmake
        DESTINATION ${package_dir})
    list(TRANSFORM arg_PACKAGES REPLACE "(.+)" "find_dependency(\\1)")
    list(JOIN arg_PACKAGES "\n" FIND_DEPENDENCIES)
    set(PACKAGE_NAME ${name})
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/package-config.cmake.in
        ${CMAKE_CURRENT_BINARY_DIR}/${name}-config.cmake
        INSTALL_DESTINATION ${package_dir})
    write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/${name}-config-version.cmake
        COMPATIBILITY SameMajorVersion)
    install(FILES
            ${CMAKE_CURRENT_BINARY_DIR}/${name}-config.cmake
            ${CMAKE_CURRENT_BINARY_DIR}/${name}-config-version.cmake
        DESTINATION ${package_dir})

    # The file finds the prefix from where it lies, so that the whole may be moved.
    file(RELATIVE_PATH prefix_from_pkg_config
        ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    cmake_path(APPEND PKG_CONFIG_PREFIX "\${pcfiledir}" ${prefix_from_pkg_config})
    string(REGEX REPLACE "/$" "" PKG_CONFIG_PREFIX ${PKG_CONFIG_PREFIX})
    cmake_path(APPEND PKG_CONFIG_LIBDIR "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
    cmake_path(APPEND PKG_CONFIG_INCLUDEDIR "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
    string(REGEX REPLACE "^lib" "" LINK_NAME ${name})
    set(PKG_CONFIG_REQUIRES "${arg_PKG_CONFIG_REQUIRES}")
    set(PKG_CONFIG_DESCRIPTION "${arg_DESCRIPTION}")
    configure_file(${PROJECT_SOURCE_DIR}/cmake/package.pc.in
        ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

# How the sources of a library are compiled, whether into the library or into a white-box test.
function(configure_library_sources target include_dir)
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${include_dir}>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
endfunction()
