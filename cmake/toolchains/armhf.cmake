# 32-bit ARM with floating point (ARMv7), with Debian's cross compiler.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(triplet arm-linux-gnueabihf)
set(architecture armhf)
set(emulator qemu-arm-static)
include("${CMAKE_CURRENT_LIST_DIR}/debian.cmake")
