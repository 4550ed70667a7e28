# What `cmake --install` installs, and how other projects find it.
#
#   <includedir>/NetworkgRPC/          public headers; generated ones in ostrevan/
#   <libdir>/                          the shared object and its links
#   <libdir>/cmake/NetworkgRPC/        CMake package NetworkgRPC
#   <libdir>/pkgconfig/                modules NetworkgRPC, NetworkgRPC-client and
#                                      NetworkgRPC-simulator
#   <datadir>/NetworkgRPC/proto/       the schemas, for writing a daemon
#   <bindir>/                          the programs
#   <mandir>/                          manual pages
#
# The components are runtime, development, tools, simulator, python, cookbook and site.
#
# All paths in the installed tree are relative, so that it can be moved.

include(CMakePackageConfigHelpers)

# --- Files ---------------------------------------------------------------------

install(FILES ${NETWORKGRPC_GENERATED_HEADERS}
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/NetworkgRPC/ostrevan" COMPONENT development)
install(FILES
  proto/ostrevan/common.proto
  proto/ostrevan/grpcdapi.proto
  proto/ostrevan/networkmanager.proto
  DESTINATION "${CMAKE_INSTALL_DATADIR}/NetworkgRPC/proto/ostrevan" COMPONENT development)

install(FILES man/libNetworkgRPC.3 DESTINATION "${CMAKE_INSTALL_MANDIR}/man3" COMPONENT development)
install(FILES man/networkgrpc-environment.7 DESTINATION "${CMAKE_INSTALL_MANDIR}/man7" COMPONENT development)

# Two export sets: finding the package for the facades alone must not require gRPC.
set(include_directory "${CMAKE_INSTALL_INCLUDEDIR}/NetworkgRPC")
install(TARGETS NetworkgRPC EXPORT NetworkgRPCTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION "${include_directory}" COMPONENT development)
install(TARGETS NetworkgRPC_Client EXPORT NetworkgRPCClientTargets
  FILE_SET HEADERS DESTINATION "${include_directory}" COMPONENT development)

# Programs find the library by a relative path, unless the loader searches its folder.
file(RELATIVE_PATH bindir_to_libdir "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
set(loader_directories
  ${CMAKE_C_IMPLICIT_LINK_DIRECTORIES} ${CMAKE_PLATFORM_IMPLICIT_LINK_DIRECTORIES})
foreach(program IN ITEMS networkgrpc networkgrpc-conformance networkgrpc-simulator)
  if(NOT TARGET ${program})
    continue()
  endif()
  if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST loader_directories)
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/${bindir_to_libdir}")
  endif()
  if(program STREQUAL "networkgrpc-simulator")
    install(TARGETS ${program} COMPONENT simulator)
  else()
    install(TARGETS ${program} COMPONENT tools)
  endif()
endforeach()

# --- CMake package -------------------------------------------------------------

set(package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/NetworkgRPC")
foreach(set IN ITEMS NetworkgRPCTargets NetworkgRPCClientTargets)
  install(EXPORT ${set} NAMESPACE NetworkgRPC:: DESTINATION "${package_directory}"
    COMPONENT development)
endforeach()
configure_package_config_file(
  cmake/NetworkgRPCConfig.cmake.in "${CMAKE_CURRENT_BINARY_DIR}/NetworkgRPCConfig.cmake"
  INSTALL_DESTINATION "${package_directory}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  "${CMAKE_CURRENT_BINARY_DIR}/NetworkgRPCConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES
  cmake/NetworkgRPCGrpc.cmake
  "${CMAKE_CURRENT_BINARY_DIR}/NetworkgRPCConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/NetworkgRPCConfigVersion.cmake"
  DESTINATION "${package_directory}" COMPONENT development)

# --- pkg-config modules --------------------------------------------------------

set(pkgconfig_directory "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH pkgconfig_to_prefix
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
# Relative folders are below the prefix; absolute ones are used unchanged.
foreach(directory IN ITEMS LIBDIR INCLUDEDIR DATADIR)
  set(pkgconfig_${directory} "\${prefix}")
  cmake_path(APPEND pkgconfig_${directory} "${CMAKE_INSTALL_${directory}}")
endforeach()
set(modules NetworkgRPC NetworkgRPC-client)
if(TARGET networkgrpc_simulator)
  list(APPEND modules NetworkgRPC-simulator)
endif()
foreach(module IN LISTS modules)
  configure_file(cmake/${module}.pc.in "${CMAKE_CURRENT_BINARY_DIR}/${module}.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${module}.pc" DESTINATION "${pkgconfig_directory}"
    COMPONENT development)
endforeach()
