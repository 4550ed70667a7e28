# Shared by the other toolchain files: Debian's cross compiler for the variable triplet and
# a sysroot with Debian packages of the variable architecture, which scripts/cross-test
# creates. CMAKE_SYSROOT selects another one.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})

if(NOT CMAKE_SYSROOT)
  get_filename_component(CMAKE_SYSROOT
    "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/${architecture}" ABSOLUTE)
endif()

# Libraries and headers come from the sysroot, programs (protoc, its plug-in, bats) from
# this machine.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
if(NOT DEFINED ENV{PKG_CONFIG_LIBDIR})
  set(ENV{PKG_CONFIG_LIBDIR}
    "${CMAKE_SYSROOT}/usr/lib/${triplet}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")
endif()

# The build runs some of its own programs, for the manual pages and the lists of tests.
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator} -L "${CMAKE_SYSROOT}")
