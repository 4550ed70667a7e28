# What the toolchain files beside this one share: Debian's cross compiler for TRIPLET,
# and a tree with Debian's packages of ARCHITECTURE to compile against, which
# scripts/cross makes. CMAKE_SYSROOT names another one.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})

if(NOT CMAKE_SYSROOT)
  get_filename_component(CMAKE_SYSROOT
    "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/${architecture}" ABSOLUTE)
endif()

# Libraries and headers are those of the other processor, programs (protoc and its
# plug-in, bats) those of this machine.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
if(NOT DEFINED ENV{PKG_CONFIG_LIBDIR})
  set(ENV{PKG_CONFIG_LIBDIR}
    "${CMAKE_SYSROOT}/usr/lib/${triplet}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")
endif()

# What the build itself has to run of its own programs: manual pages, lists of tests.
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator} -L "${CMAKE_SYSROOT}")
