# What `cmake --install` puts where, and how others find it.
#
#   <includedir>/NetworkgRPC/          public headers, ostrevan/ with the generated ones
#   <libdir>/                          the shared object with its SONAME links
#   <libdir>/cmake/NetworkgRPC/        CMake package NetworkgRPC
#   <libdir>/pkgconfig/                modules NetworkgRPC and NetworkgRPC-client
#   <datadir>/NetworkgRPC/proto/       the schema, for those who write a daemon
#   <bindir>/                          the programs that were built
#   <mandir>/                          manual pages
#
# The installed tree finds itself by relative paths, so that it can be moved.

include(CMakePackageConfigHelpers)

# --- Files ---------------------------------------------------------------------

install(FILES ${NETWORKGRPC_GENERATED_HEADERS}
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/NetworkgRPC/ostrevan")
install(FILES
  proto/ostrevan/common.proto
  proto/ostrevan/grpcdapi.proto
  proto/ostrevan/networkmanager.proto
  DESTINATION "${CMAKE_INSTALL_DATADIR}/NetworkgRPC/proto/ostrevan")

install(FILES man/libNetworkgRPC.3 DESTINATION "${CMAKE_INSTALL_MANDIR}/man3")
install(FILES man/networkgrpc-environment.7 DESTINATION "${CMAKE_INSTALL_MANDIR}/man7")

# Two export sets: users of the facades must not need gRPC to find the package.
set(include_directory "${CMAKE_INSTALL_INCLUDEDIR}/NetworkgRPC")
install(TARGETS NetworkgRPC EXPORT NetworkgRPCTargets
  FILE_SET HEADERS DESTINATION "${include_directory}")
install(TARGETS NetworkgRPC_Client EXPORT NetworkgRPCClientTargets
  FILE_SET HEADERS DESTINATION "${include_directory}")

# A program finds the library beside it, except where the loader looks anyway.
file(RELATIVE_PATH bindir_to_libdir "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
set(loader_directories
  ${CMAKE_C_IMPLICIT_LINK_DIRECTORIES} ${CMAKE_PLATFORM_IMPLICIT_LINK_DIRECTORIES})
foreach(program IN ITEMS networkgrpc networkgrpc-simulator)
  if(NOT TARGET ${program})
    continue()
  endif()
  if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST loader_directories)
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/${bindir_to_libdir}")
  endif()
  install(TARGETS ${program})
endforeach()

# --- CMake package -------------------------------------------------------------

set(package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/NetworkgRPC")
foreach(set IN ITEMS NetworkgRPCTargets NetworkgRPCClientTargets)
  install(EXPORT ${set} NAMESPACE NetworkgRPC:: DESTINATION "${package_directory}")
endforeach()
configure_package_config_file(
  cmake/NetworkgRPCConfig.cmake.in "${CMAKE_CURRENT_BINARY_DIR}/NetworkgRPCConfig.cmake"
  INSTALL_DESTINATION "${package_directory}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  "${CMAKE_CURRENT_BINARY_DIR}/NetworkgRPCConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/NetworkgRPCConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/NetworkgRPCConfigVersion.cmake"
  DESTINATION "${package_directory}")

# --- pkg-config modules --------------------------------------------------------

set(pkgconfig_directory "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH pkgconfig_to_prefix
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
# Relative folders hang below the prefix, absolute ones stay what they are.
foreach(directory IN ITEMS LIBDIR INCLUDEDIR DATADIR)
  set(pkgconfig_${directory} "\${prefix}")
  cmake_path(APPEND pkgconfig_${directory} "${CMAKE_INSTALL_${directory}}")
endforeach()
foreach(module IN ITEMS NetworkgRPC NetworkgRPC-client)
  configure_file(cmake/${module}.pc.in "${CMAKE_CURRENT_BINARY_DIR}/${module}.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${module}.pc" DESTINATION "${pkgconfig_directory}")
endforeach()
