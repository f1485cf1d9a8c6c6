# `make install`: the library with its SONAME links, the public headers, a
# pkg-config file and a CMake package with the imported target Orvelan::orvelan.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

target_include_directories(orvelan PUBLIC $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>
                                          $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS orvelan EXPORT OrvelanTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT Development)
file(GLOB ORVELAN_PUBLIC_HEADERS ${CMAKE_SOURCE_DIR}/include/orvelan.h ${CMAKE_SOURCE_DIR}/include/orvelan.hpp)
install(FILES ${ORVELAN_PUBLIC_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(ORVELAN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Orvelan)
install(EXPORT OrvelanTargets NAMESPACE Orvelan:: DESTINATION ${ORVELAN_CMAKE_DIR})
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/OrvelanConfig.cmake.in
                              ${CMAKE_BINARY_DIR}/OrvelanConfig.cmake INSTALL_DESTINATION ${ORVELAN_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/OrvelanConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/OrvelanConfig.cmake ${CMAKE_BINARY_DIR}/OrvelanConfigVersion.cmake
        DESTINATION ${ORVELAN_CMAKE_DIR})

# Relative to the .pc file, so that a copy installed with another --prefix or
# under DESTDIR still points at itself.
file(RELATIVE_PATH ORVELAN_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_SOURCE_DIR}/cmake/orvelan.pc.in ${CMAKE_BINARY_DIR}/orvelan.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/orvelan.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The command-line tools' manual page.
install(FILES ${CMAKE_SOURCE_DIR}/docs/orvelan.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
