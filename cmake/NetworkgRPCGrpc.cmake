# Finds gRPC without TLS and protobuf's lite runtime, for this project's build and, installed,
# for its users. By pkg-config, because gRPC's CMake package requires TLS and full protobuf.

# NetworkgRPC_find_grpc(<missing>): defines the target NetworkgRPC::grpc. <missing> is a
# variable: the names of what is not installed, or empty.
#
# pkg-config runs once. pkg_check_modules would run it 25 times, and each run takes up to a
# second, because gRPC's module requires dozens of others. As there, modules below
# CMAKE_PREFIX_PATH are found, and libraries are linked by their paths.
function(NetworkgRPC_find_grpc missing)
  set(${missing} "" PARENT_SCOPE)
  if(TARGET NetworkgRPC::grpc)
    return()
  endif()
  set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER) # not that of a sysroot
  find_package(PkgConfig QUIET)
  if(NOT PkgConfig_FOUND)
    set(${missing} pkg-config PARENT_SCOPE)
    return()
  endif()

  cmake_path(CONVERT "$ENV{CMAKE_PREFIX_PATH}" TO_CMAKE_PATH_LIST prefixes)
  set(folders "$ENV{PKG_CONFIG_PATH}")
  foreach(prefix IN LISTS CMAKE_PREFIX_PATH prefixes)
    foreach(folder IN ITEMS "lib/${CMAKE_LIBRARY_ARCHITECTURE}" lib64 lib share)
      list(APPEND folders "${prefix}/${folder}/pkgconfig")
    endforeach()
  endforeach()
  list(JOIN folders ":" folders)
  set(pkg_config
    "${CMAKE_COMMAND}" -E env "PKG_CONFIG_PATH=${folders}" PKG_CONFIG_ALLOW_SYSTEM_LIBS=1
    "${PKG_CONFIG_EXECUTABLE}" ${PKG_CONFIG_ARGN})
  set(modules grpc++_unsecure protobuf-lite)
  if(NETWORKGRPC_STATIC)
    set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
    # What gRPC's modules do not name.
    set(more_static_libraries -lcares -lz -lupb -laddress_sorting)
    list(APPEND pkg_config --static)
  endif()

  execute_process(COMMAND ${pkg_config} --cflags --libs ${modules}
    RESULT_VARIABLE failed OUTPUT_VARIABLE flags ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT failed EQUAL 0)
    set(absent)
    foreach(module IN LISTS modules)
      execute_process(COMMAND ${pkg_config} --exists ${module} RESULT_VARIABLE failed)
      if(NOT failed EQUAL 0)
        list(APPEND absent ${module})
      endif()
    endforeach()
    list(JOIN absent ", " absent)
    set(${missing} "${absent}" PARENT_SCOPE)
    return()
  endif()

  add_library(NetworkgRPC::grpc INTERFACE IMPORTED)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  list(APPEND flags ${more_static_libraries})
  set(folders ${flags})
  list(FILTER folders INCLUDE REGEX "^-L")
  list(TRANSFORM folders REPLACE "^-L" "")
  foreach(flag IN LISTS flags)
    if(flag MATCHES "^-L")
      continue()
    elseif(flag MATCHES "^-I(.+)")
      target_include_directories(NetworkgRPC::grpc INTERFACE "${CMAKE_MATCH_1}")
    elseif(flag MATCHES "^-l(.+)")
      set(name "${CMAKE_MATCH_1}")
      find_library(library_${name} ${name} HINTS ${folders} NO_CACHE)
      if(library_${name})
        set(flag "${library_${name}}")
      endif()
      target_link_libraries(NetworkgRPC::grpc INTERFACE "${flag}")
    elseif(flag MATCHES "^[^-]")
      target_link_libraries(NetworkgRPC::grpc INTERFACE "${flag}")
    else()
      if(flag MATCHES "^-(Wl,|pthread)")
        target_link_options(NetworkgRPC::grpc INTERFACE "${flag}")
      endif()
      if(NOT flag MATCHES "^-Wl,")
        target_compile_options(NetworkgRPC::grpc INTERFACE "${flag}")
      endif()
    endif()
  endforeach()
endfunction()
