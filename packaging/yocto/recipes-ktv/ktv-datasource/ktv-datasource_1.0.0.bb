SUMMARY = "Service and data back end of a family of handheld micro-ohmmeters"
DESCRIPTION = "Everything behind the touch screen: device description, settings, languages, \
measured values, lists, counters, USB port, sounds and WiFi."
SECTION = "libs"
LICENSE = "CLOSED"

DEPENDS = "qtbase"

# The source tree that contains this recipe.
inherit externalsrc
EXTERNALSRC = "${@os.path.realpath(os.path.join(d.getVar('THISDIR'), '../../../../..'))}"
EXTERNALSRC_BUILD = "${WORKDIR}/build"

inherit cmake_qt5 pkgconfig

PACKAGECONFIG ??= "tools"
PACKAGECONFIG[tools] = "-DKTV_BUILD_TOOLS=ON,-DKTV_BUILD_TOOLS=OFF"
PACKAGECONFIG[panel] = "-DKTV_BUILD_PANEL=ON,-DKTV_BUILD_PANEL=OFF"
# The maker's own parts, from a recipe that provides ktv-platform with its CMake package; without
# this the workstation's stand-in is built.
PACKAGECONFIG[platform] = "-DKTV_PLATFORM_PACKAGE=ON,-DKTV_PLATFORM_PACKAGE=OFF,ktv-platform"

EXTRA_OECMAKE = "-DKTV_HARDENING=ON -DCMAKE_SKIP_RPATH=ON"

PACKAGE_BEFORE_PN = "ktvctl ktv-panel ${PN}-platform ${PN}-units"
FILES:ktvctl = "${bindir}/ktvctl ${datadir}/bash-completion"
FILES:ktv-panel = "${bindir}/ktvpanel"
FILES:${PN}-platform = "${libdir}/libKTV_Platform.so.*"
FILES:${PN}-units = "${nonarch_base_libdir}/systemd ${nonarch_libdir}/systemd"

RDEPENDS:${PN} = "qtbase-plugins ${PN}-units"
RRECOMMENDS:${PN} = "alsa-utils-aplay alsa-utils-amixer busybox procps socat wireless-tools wpa-supplicant"
