# cmake --install: the program, the shared library with its headers and package files, and
# the shipped data under share/kplan.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The host finds the data from the installed program or library (host/db/InstalledData.h),
# so the install can be moved whole: the paths are relative.
file(RELATIVE_PATH bindir_to_datadir ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_DATADIR})
file(RELATIVE_PATH libdir_to_datadir ${CMAKE_INSTALL_FULL_LIBDIR} ${CMAKE_INSTALL_FULL_DATADIR})
target_compile_definitions(kplan_db PRIVATE KPLAN_BINDIR_TO_DATADIR="${bindir_to_datadir}"
                                            KPLAN_LIBDIR_TO_DATADIR="${libdir_to_datadir}")

set(KPLAN_INSTALL_DATADIR ${CMAKE_INSTALL_DATADIR}/kplan)
install(TARGETS kplan RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY data/standards data/patterns DESTINATION ${KPLAN_INSTALL_DATADIR})
install(FILES data/samples/sample-plan.dxf data/samples/README.md
        DESTINATION ${KPLAN_INSTALL_DATADIR}/samples)

if(NOT TARGET kplan_shared)
    return()
endif()

# Headers as in the source tree, so that includes are written as here ("record/DKKeys.h")
# against -I<prefix>/include/kplan. Of host/db and host/dxf only what the interface names.
set(KPLAN_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/kplan)
foreach(dir record standard stats draw geometry host/arx host/kova host/mfc host/gpc)
    install(DIRECTORY ${dir}/ DESTINATION ${KPLAN_INSTALL_INCLUDEDIR}/${dir}
            FILES_MATCHING PATTERN "*.h"
            # The host's own helpers for its command-line functions and reading objects
            # unopened.
            PATTERN "acedinternal.h" EXCLUDE PATTERN "peek.h" EXCLUDE)
endforeach()
install(FILES host/db/Database.h host/db/GroupCode.h host/db/Value.h host/db/WindowsFormat.h
        DESTINATION ${KPLAN_INSTALL_INCLUDEDIR}/host/db)
install(FILES host/dxf/Dxf.h DESTINATION ${KPLAN_INSTALL_INCLUDEDIR}/host/dxf)
install(FILES kplan/Export.h DESTINATION ${KPLAN_INSTALL_INCLUDEDIR}/kplan)

install(TARGETS kplan_shared EXPORT kplanTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT Development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${KPLAN_INSTALL_INCLUDEDIR})

set(KPLAN_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/kplan)
install(EXPORT kplanTargets NAMESPACE kplan:: DESTINATION ${KPLAN_INSTALL_CMAKEDIR})
configure_package_config_file(cmake/kplanConfig.cmake.in
                              ${CMAKE_CURRENT_BINARY_DIR}/kplanConfig.cmake
                              INSTALL_DESTINATION ${KPLAN_INSTALL_CMAKEDIR}
                              PATH_VARS KPLAN_INSTALL_DATADIR)
# Before 1.0 only the same minor release keeps the interface.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/kplanConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kplanConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/kplanConfigVersion.cmake
        DESTINATION ${KPLAN_INSTALL_CMAKEDIR})

file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH pc_libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH pc_includedir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
file(RELATIVE_PATH pc_datadir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_DATADIR})
configure_file(cmake/kplan.pc.in ${CMAKE_CURRENT_BINARY_DIR}/kplan.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kplan.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
