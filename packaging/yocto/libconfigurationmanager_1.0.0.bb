# SPDX-License-Identifier: MIT
SUMMARY = "Client library for the configuration service of a Braille embosser"
SECTION = "libs"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=55bb38ba5f2576b353bd4a4cb9bc97c7"

# To be set where the distribution keeps the project, together with SRCREV.
LIBCONFIGURATIONMANAGER_URI ?= ""
SRC_URI = "${LIBCONFIGURATIONMANAGER_URI}"
S = "${WORKDIR}/git"

# cmake_qt5 and qtbase are of the layer meta-qt5.
inherit cmake_qt5
DEPENDS = "qtbase"

EXTRA_OECMAKE += " \
    -DBUILD_TESTING=OFF \
    -DLIBCONFIGURATIONMANAGER_EXAMPLES=OFF \
"

# A controller has the real service; the simulator is for the images of developers.
PACKAGECONFIG ??= ""
PACKAGECONFIG[simulator] = "-DLIBCONFIGURATIONMANAGER_SIMULATOR=ON,-DLIBCONFIGURATIONMANAGER_SIMULATOR=OFF,jsoncpp"
PACKAGECONFIG[tool] = "-DLIBCONFIGURATIONMANAGER_TOOL=ON,-DLIBCONFIGURATIONMANAGER_TOOL=OFF"
# The embosser manufacturer's libtavelorn, from a recipe of that name, instead of the one here.
PACKAGECONFIG[installed-libtavelorn] = "-DLIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN=ON,-DLIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN=OFF,libtavelorn"

PACKAGES =+ "${PN}-simulator ${PN}-tool"
FILES:${PN}-simulator = " \
    ${bindir}/embosser-simulator \
    ${datadir}/dbus-1/system-services \
    ${datadir}/dbus-1/system.d \
    ${nonarch_libdir}/systemd \
    ${nonarch_libdir}/sysusers.d \
"
RDEPENDS:${PN}-simulator = "qtbase-plugins"
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
