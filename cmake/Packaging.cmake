# The Debian package of kplan, made by CPack from what `cmake --install` installs:
#
#   cpack -G DEB        (in the build folder) -> kplan_<version>-1_amd64.deb
#
# installed under /usr, its run-time dependencies found by dpkg-shlibdeps (Debian package
# dpkg-dev) from the libraries the program and libkplan link, with the copyright file and
# the Debian changelog in /usr/share/doc/kplan as Debian policy asks.
if(CMAKE_CROSSCOMPILING OR WIN32)
    return()
endif()
include(GNUInstallDirs)

set(KPLAN_MAINTAINER "kplan maintainers <maintainers@users.noreply.c-seed-7bca1a2c.example>"
    CACHE STRING "Maintainer of the Debian package, as Name <address>")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kplan)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${KPLAN_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${KPLAN_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "planning data in CAD drawings
kplan reads land-use plans drawn in CAD (DXF): land parcels as closed curves
with their records, hatches, planning units, blocks and red lines, and the
land-use class tables of a national standard. It prints the land-use balance
tables of a plan (GB 50137-2011), lists its parcels, draws the plan as a
picture, puts parcels on their class layers with their hatches, and exchanges
them with GIS formats. The package holds the kplan program, its library
libkplan with headers, CMake and pkg-config files for modules built on it, the
shipped standards directory, hatch patterns and a sample plan.")
# The libraries the program and libkplan are linked with, as dpkg-shlibdeps finds them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# libkplan in /usr/lib: the dynamic linker's cache is remade through dpkg's trigger.
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# kplan render (and stats --map) needs a font with Chinese glyphs, found through
# fontconfig; the other commands need none.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-cjk")

# The Debian changelog: one entry for the version, dated as the last commit of the sources.
execute_process(COMMAND git -C ${PROJECT_SOURCE_DIR} log -1 --format=%aD
                OUTPUT_VARIABLE KPLAN_CHANGELOG_DATE RESULT_VARIABLE failed
                OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(failed OR NOT KPLAN_CHANGELOG_DATE)
    string(TIMESTAMP KPLAN_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
endif()
set(debian ${PROJECT_BINARY_DIR}/debian)
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in ${debian}/changelog.Debian @ONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/copyright ${debian}/copyright @ONLY)
execute_process(COMMAND gzip -9n -c ${debian}/changelog.Debian
                OUTPUT_FILE ${debian}/changelog.Debian.gz)
install(FILES ${debian}/copyright ${debian}/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kplan)

include(CPack)

# The package built, then looked at as dpkg and lintian see it (a few minutes; ctest -L
# package). Not of a sanitizer build, whose program is not the one shipped.
if(KPLAN_TESTS AND NOT KPLAN_SANITIZE)
    add_test(NAME kplan_package
             COMMAND bash ${PROJECT_SOURCE_DIR}/tests/package/check_package.sh ${PROJECT_BINARY_DIR}
                     ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
    set_tests_properties(kplan_package PROPERTIES LABELS package TIMEOUT 1200)
endif()
