# SPDX-License-Identifier: MIT
SUMMARY = "Client library for the configuration service of a Braille embosser"
DESCRIPTION = "Gives the applications of a Braille embosser's controller typed access to its \
configuration. Each operation is one call to the configuration service on the D-Bus system bus."
SECTION = "libs"
# What is linked with it has licences of its own: packaging/README.md.
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=55bb38ba5f2576b353bd4a4cb9bc97c7"

# To be set where the distribution keeps the project, together with SRCREV.
LIBCONFIGURATIONMANAGER_URI ?= ""
SRC_URI = "${LIBCONFIGURATIONMANAGER_URI}"
# Releases of Yocto from 5.3 on set it themselves, and refuse this line.
S = "${WORKDIR}/git"

# Of the layer meta-qt5, and brings qtbase, which is to be built with D-Bus.
inherit cmake_qt5
# For the simulator as a service; they do nothing where its package is not built.
inherit systemd useradd

EXTRA_OECMAKE += " \
    -DBUILD_TESTING=OFF \
    -DLIBCONFIGURATIONMANAGER_EXAMPLES=OFF \
"

# A controller has the real service; the simulator is for the images of developers, and needs a qtbase
# with PACKAGECONFIG sql-sqlite. The manual pages and completions, which the programs write
# themselves, are left out.
PACKAGECONFIG ??= ""
PACKAGECONFIG[simulator] = "-DLIBCONFIGURATIONMANAGER_SIMULATOR=ON,-DLIBCONFIGURATIONMANAGER_SIMULATOR=OFF,jsoncpp"
PACKAGECONFIG[tool] = "-DLIBCONFIGURATIONMANAGER_TOOL=ON,-DLIBCONFIGURATIONMANAGER_TOOL=OFF"
# The calls that do not wait, in a package of their own; the tool is built only together with it.
PACKAGECONFIG[async] = "-DLIBCONFIGURATIONMANAGER_ASYNC=ON,-DLIBCONFIGURATIONMANAGER_ASYNC=OFF"
# For the tests of applications, in the package of static libraries.
PACKAGECONFIG[testing] = "-DLIBCONFIGURATIONMANAGER_TESTING=ON,-DLIBCONFIGURATIONMANAGER_TESTING=OFF"
# The embosser manufacturer's libtavelorn, from a recipe of that name, instead of the one here.
PACKAGECONFIG[installed-libtavelorn] = "-DLIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN=ON,-DLIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN=OFF,libtavelorn"

PACKAGES =+ "${PN}-async ${PN}-simulator ${PN}-tool"
FILES:${PN}-async = "${libdir}/libconfigurationmanager-async.so.*"
FILES:${PN}-simulator = " \
    ${bindir}/embosser-simulator \
    ${datadir}/dbus-1/system-services \
    ${datadir}/dbus-1/system.d \
    ${nonarch_libdir}/systemd \
    ${nonarch_libdir}/sysusers.d \
"
RDEPENDS:${PN}-simulator = "qtbase-plugins"
# The bus starts it when somebody calls it.
SYSTEMD_PACKAGES = "${PN}-simulator"
SYSTEMD_SERVICE:${PN}-simulator = "embosser-simulator.service"
SYSTEMD_AUTO_ENABLE:${PN}-simulator = "disable"
# What sysusers.d says, where systemd does not read it.
USERADD_PACKAGES = "${PN}-simulator"
GROUPADD_PARAM:${PN}-simulator = "--system embosser; --system embosser-simulator"
USERADD_PARAM:${PN}-simulator = "--system --no-create-home --home-dir /nonexistent \
    --shell /usr/sbin/nologin --gid embosser-simulator embosser-simulator"
FILES:${PN}-tool = " \
    ${bindir}/embosserctl \
    ${datadir}/bash-completion \
    ${datadir}/zsh \
"
FILES:${PN}-dev += " \
    ${datadir}/dbus-1/interfaces \
    ${datadir}/libconfigurationmanager \
    ${datadir}/qlogging-categories5 \
"
