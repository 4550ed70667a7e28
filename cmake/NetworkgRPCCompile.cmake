# How this project's own code is compiled and linked. Never exported: a user's
# code is compiled by the user's rules.

add_library(networkgrpc_hardening INTERFACE)
# As Debian builds its packages. Fortified functions need an optimising build.
target_compile_options(networkgrpc_hardening INTERFACE
  -fstack-protector-strong -Wformat -Werror=format-security
  $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
target_link_options(networkgrpc_hardening INTERFACE
  LINKER:-z,relro LINKER:-z,now LINKER:--as-needed)
# What is shipped must not tell where it was built, and two builds of the same
# sources must not differ by it. A debugger at the developer's desk wants to know.
target_compile_options(networkgrpc_hardening INTERFACE
  $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>
  $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${CMAKE_BINARY_DIR}=.>)

add_library(networkgrpc_compile INTERFACE)
target_compile_features(networkgrpc_compile INTERFACE cxx_std_17 c_std_99)
target_compile_options(networkgrpc_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${NETWORKGRPC_WERROR}>:-Werror>)
# Own headers are included by their path in the source tree. The public ones are
# included by name alone, as their users do.
target_include_directories(networkgrpc_compile INTERFACE "${PROJECT_SOURCE_DIR}")
target_link_libraries(networkgrpc_compile INTERFACE networkgrpc_hardening)

# The shared object is built for size: its time goes into gRPC and the kernel, and
# the generated classes, which make most of it, are run a few times per call.
# Sections of their own let the linker drop what nobody can reach.
add_library(networkgrpc_small INTERFACE)
# With debug information, from which its binary interface is read; what is shipped
# is linked without.
target_compile_options(networkgrpc_small INTERFACE
  $<$<NOT:$<CONFIG:Debug>>:-Os> $<$<CONFIG:Release>:-g> -ffunction-sections -fdata-sections)
# Its own calls of functions that it exports go straight to them, as they would in a
# program that has the classes in itself. The loader then looks up less than half as
# many symbols. Objects, such as the one instance of each client, are still looked up.
target_link_options(networkgrpc_small INTERFACE LINKER:--gc-sections LINKER:-Bsymbolic-functions)

# Executables of this project are position-independent, like everything else.
include(CheckPIESupported)
check_pie_supported()
