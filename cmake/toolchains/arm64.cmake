# 64-bit ARM, with Debian's cross compiler.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(triplet aarch64-linux-gnu)
set(architecture arm64)
set(emulator qemu-aarch64-static)
include("${CMAKE_CURRENT_LIST_DIR}/debian.cmake")
