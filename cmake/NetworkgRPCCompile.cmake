# How this project's own code is compiled and linked. Not exported: users compile their
# code with their own flags.

add_library(networkgrpc_hardening INTERFACE)
# The same as Debian's packages. Fortified functions require optimisation.
target_compile_options(networkgrpc_hardening INTERFACE
  -fstack-protector-strong -Wformat -Werror=format-security
  $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
target_link_options(networkgrpc_hardening INTERFACE
  LINKER:-z,relro LINKER:-z,now LINKER:--as-needed)
# Releases do not contain the paths of the build machine, so that builds in different
# folders are identical. Debug builds keep them for the debugger.
target_compile_options(networkgrpc_hardening INTERFACE
  $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>
  $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${CMAKE_BINARY_DIR}=.>)

add_library(networkgrpc_compile INTERFACE)
target_compile_features(networkgrpc_compile INTERFACE cxx_std_17 c_std_99)
target_compile_options(networkgrpc_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${NETWORKGRPC_WERROR}>:-Werror>)
# Own headers are included by their path from the root of the tree, public headers by
# name alone, as users include them.
target_include_directories(networkgrpc_compile INTERFACE "${PROJECT_SOURCE_DIR}")
target_link_libraries(networkgrpc_compile INTERFACE networkgrpc_hardening)

# The shared object is optimised for size: a call spends its time in gRPC and the kernel,
# and most of the code is generated classes that run a few times per call. With one
# section per function and object the linker can drop what is unreachable.
add_library(networkgrpc_small INTERFACE)
# The debug information is for the record of the binary interface; the linker strips it
# from releases.
target_compile_options(networkgrpc_small INTERFACE
  $<$<NOT:$<CONFIG:Debug>>:-Os> $<$<CONFIG:Release>:-g> -ffunction-sections -fdata-sections)
# Calls of its own exported functions are bound at link time, as in a static program, so
# that the loader looks up less than half as many symbols. Objects, such as the one
# instance of each client, are still looked up.
target_link_options(networkgrpc_small INTERFACE LINKER:--gc-sections LINKER:-Bsymbolic-functions)

# Executables are position-independent, too.
include(CheckPIESupported)
check_pie_supported()
