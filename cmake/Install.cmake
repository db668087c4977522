# What an installation holds: the library, the headers, what CMake and pkg-config need to find them, and the program. All
# of it may be moved as one. Its parts, which become packages of their own: runtime, development, program, python.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

install(TARGETS zkr13n EXPORT ZKR13N
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/ TYPE INCLUDE FILES_MATCHING PATTERN "*.h")

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/ZKR13N)
install(EXPORT ZKR13N FILE ZKR13NConfig.cmake NAMESPACE ZKR13N:: DESTINATION ${package})
write_basic_package_version_file(ZKR13NConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/ZKR13NConfigVersion.cmake DESTINATION ${package})

file(RELATIVE_PATH up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
file(CONFIGURE OUTPUT zkr13n.pc @ONLY CONTENT [[
prefix=${pcfiledir}/@up@
libdir=${prefix}/@CMAKE_INSTALL_LIBDIR@
includedir=${prefix}/@CMAKE_INSTALL_INCLUDEDIR@

Name: zkr13n
Description: @PROJECT_DESCRIPTION@
Version: @PROJECT_VERSION@
Libs: -L${libdir} -lZKR13N
Cflags: -I${includedir}
]])
install(FILES ${CMAKE_BINARY_DIR}/zkr13n.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
