# How this project's own code is compiled and linked. Not exported: users compile their
# code with their own flags.

# The user's flags come before these on the command line, so each option is only added where
# they do not set the same.

# networkgrpc_users_flags(<result> <language> <configuration>): the user's flags, without the
# optimisation that CMake itself chooses for a configuration.
function(networkgrpc_users_flags result language configuration)
  string(TOUPPER "${configuration}" suffix)
  set(flags "${CMAKE_${language}_FLAGS_${suffix}}")
  string(STRIP "${CMAKE_${language}_FLAGS_${suffix}_INIT}" initial)
  if(flags STREQUAL initial)
    string(REGEX REPLACE "-(O[^ ]*|g)( |$)" "" flags "${flags}")
  endif()
  get_directory_property(options COMPILE_OPTIONS)
  get_directory_property(definitions COMPILE_DEFINITIONS)
  set(${result} "${CMAKE_${language}_FLAGS} ${flags} ${options} ${definitions}" PARENT_SCOPE)
endfunction()

# networkgrpc_compile_options(<target> UNLESS <pattern> <option...>): the options, for each
# language and configuration whose flags do not match the pattern.
function(networkgrpc_compile_options target unless pattern)
  foreach(language IN ITEMS C CXX)
    foreach(configuration IN ITEMS ${CMAKE_CONFIGURATION_TYPES} "${CMAKE_BUILD_TYPE}")
      networkgrpc_users_flags(flags ${language} "${configuration}")
      if(NOT flags MATCHES "${pattern}")
        target_compile_options(${target} INTERFACE
          "$<$<AND:$<COMPILE_LANGUAGE:${language}>,$<CONFIG:${configuration}>>:${ARGN}>")
      endif()
    endforeach()
  endforeach()
endfunction()

# networkgrpc_link_option(<target> UNLESS <pattern> <option>): the same for linking anything.
function(networkgrpc_link_option target unless pattern option)
  get_directory_property(flags LINK_OPTIONS)
  foreach(type IN ITEMS EXE MODULE SHARED)
    string(APPEND flags " ${CMAKE_${type}_LINKER_FLAGS}")
  endforeach()
  if(NOT flags MATCHES "${pattern}")
    target_link_options(${target} INTERFACE ${option})
  endif()
endfunction()

# networkgrpc_compile_option_if_known(<target> <name> <option>): an option that only some compilers
# or architectures have, unless the user's flags contain the name.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
function(networkgrpc_compile_option_if_known target name option)
  string(MAKE_C_IDENTIFIER "NETWORKGRPC_HAS_${name}" known)
  set(CMAKE_REQUIRED_FLAGS -Werror)
  check_cxx_compiler_flag(${option} ${known})
  if(${known})
    networkgrpc_compile_options(${target} UNLESS "${name}" ${option})
  endif()
endfunction()

add_library(networkgrpc_hardening INTERFACE)
# The same as Debian's packages, and more. Fortified functions require optimisation; the third
# level, buffers of a size that is only known at run time, requires GCC 12 or clang.
set(fortify_level 3)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 12)
  set(fortify_level 2)
endif()
networkgrpc_compile_options(networkgrpc_hardening UNLESS "-f(no-)?stack-protector" -fstack-protector-strong)
networkgrpc_compile_options(networkgrpc_hardening UNLESS "-W(no-)?format([ ;=]|$)" -Wformat)
networkgrpc_compile_options(networkgrpc_hardening UNLESS "format-security|-Wno-format" -Werror=format-security)
networkgrpc_compile_options(networkgrpc_hardening UNLESS "_FORTIFY_SOURCE|-O0"
  $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${fortify_level}>)
networkgrpc_compile_option_if_known(networkgrpc_hardening stack-clash-protection -fstack-clash-protection)
networkgrpc_link_option(networkgrpc_hardening UNLESS "norelro" LINKER:-z,relro)
networkgrpc_link_option(networkgrpc_hardening UNLESS "lazy" LINKER:-z,now)
target_link_options(networkgrpc_hardening INTERFACE LINKER:--as-needed)
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

# For programs only. In the library, marking each target of a jump would take 4 % more space,
# and assertions time.
add_library(networkgrpc_program INTERFACE)
networkgrpc_compile_option_if_known(networkgrpc_program cf-protection -fcf-protection=full)
networkgrpc_compile_option_if_known(networkgrpc_program branch-protection -mbranch-protection=standard)
target_compile_definitions(networkgrpc_program INTERFACE _GLIBCXX_ASSERTIONS)
# With the assertions, GCC 12 warns of assignments of literals to strings (its bug 105329).
target_compile_options(networkgrpc_program INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# They wait for daemons, so they are optimised only as far as the compiler is quick.
networkgrpc_compile_options(networkgrpc_program UNLESS "(^|[ ;])-O" $<$<CONFIG:Release,RelWithDebInfo>:-O1>)

# The shared object is optimised for size: a call spends its time in gRPC and the kernel,
# and most of the code is generated classes that run a few times per call. With one
# section per function and object the linker can drop what is unreachable.
add_library(networkgrpc_small INTERFACE)
networkgrpc_compile_options(networkgrpc_small UNLESS "(^|[ ;])-O" $<$<NOT:$<CONFIG:Debug>>:-Os>)
target_compile_options(networkgrpc_small INTERFACE -ffunction-sections -fdata-sections)
# The debug information of releases is for the record of the binary interface: the linker
# strips it with ${networkgrpc_strip}.
networkgrpc_compile_options(networkgrpc_small UNLESS "(^|[ ;])-g" $<$<CONFIG:Release>:-g>)
networkgrpc_users_flags(flags CXX Release)
set(networkgrpc_strip)
if(NOT flags MATCHES "(^|[ ;])-g")
  set(networkgrpc_strip $<$<CONFIG:Release>:LINKER:--strip-debug>)
endif()
# Calls of its own exported functions are bound at link time, as in a static program, so
# that the loader looks up less than half as many symbols. Objects, such as the one
# instance of each client, are still looked up.
target_link_options(networkgrpc_small INTERFACE LINKER:--gc-sections LINKER:-Bsymbolic-functions)

# Static programs are made small: the linker drops what is unreachable, and lld packs
# relocations on every architecture. The map lists what was linked. Not every C library has
# the start files of position-independent static programs: Debian's for 32-bit ARM has not.
if(NETWORKGRPC_STATIC)
  target_link_libraries(networkgrpc_compile INTERFACE networkgrpc_small)
  find_program(NETWORKGRPC_LLD ld.lld REQUIRED)
  cmake_path(GET NETWORKGRPC_LLD PARENT_PATH folder_of_lld) # a cross compiler searches only its own
  check_linker_flag(CXX -static-pie NETWORKGRPC_HAS_STATIC_PIE)
  set(kind -static)
  if(NETWORKGRPC_HAS_STATIC_PIE)
    set(kind -static-pie)
  endif()
  add_link_options(${kind} -s -fuse-ld=lld "-B${folder_of_lld}" LINKER:--pack-dyn-relocs=relr
    "LINKER:-Map=$<TARGET_PROPERTY:NAME>.map")
  if(CMAKE_SYSROOT)
    # A cross compiler prefers its own libraries of C and C++ to the sysroot's, which has updates.
    set(libraries "${CMAKE_SYSROOT}/usr/lib")
    string(REGEX MATCH "^[0-9]+" gcc "${CMAKE_CXX_COMPILER_VERSION}")
    add_link_options("-B${libraries}/${CMAKE_LIBRARY_ARCHITECTURE}"
      "-B${libraries}/gcc/${CMAKE_LIBRARY_ARCHITECTURE}/${gcc}")
  endif()
endif()

# networkgrpc_add_precompiled_headers(): the headers in which the compiler spends most of its time
# with the programs. It reads them once, for the libraries of networkgrpc_compile_fast(), which
# must have the same flags.
function(networkgrpc_add_precompiled_headers)
  file(CONFIGURE OUTPUT precompiled.cc CONTENT "")
  add_library(networkgrpc_precompiled STATIC "${CMAKE_CURRENT_BINARY_DIR}/precompiled.cc")
  target_link_libraries(networkgrpc_precompiled PRIVATE
    NetworkgRPC::Client networkgrpc_compile networkgrpc_program nlohmann_json::nlohmann_json)
  set_target_properties(networkgrpc_precompiled PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_precompile_headers(networkgrpc_precompiled PRIVATE <nlohmann/json.hpp>
    <ostrevan/grpcdapi.grpc.pb.h> <ostrevan/networkmanager.grpc.pb.h>)
endfunction()

# networkgrpc_compile_fast(<library>): with the precompiled headers, and several files at a time
# unless CMAKE_UNITY_BUILD=OFF, so that the names in them must differ.
function(networkgrpc_compile_fast target)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_precompile_headers(${target} REUSE_FROM networkgrpc_precompiled)
  if(NOT DEFINED CMAKE_UNITY_BUILD)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 16)
  endif()
endfunction()

# Executables are position-independent, too.
include(CheckPIESupported)
check_pie_supported()
