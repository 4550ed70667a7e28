# networkgrpc_wire: messages, stubs and server base classes, generated from proto/ in
# NETWORKGRPC_GENERATED_DIR.

include(NetworkgRPCGrpc)
NetworkgRPC_find_grpc(missing)
if(missing)
  message(FATAL_ERROR "NetworkgRPC requires what is not installed: ${missing}")
endif()
find_program(NETWORKGRPC_PROTOC protoc REQUIRED)
find_program(NETWORKGRPC_GRPC_PLUGIN grpc_cpp_plugin REQUIRED)

set(NETWORKGRPC_GENERATED_DIR "${CMAKE_CURRENT_BINARY_DIR}/generated")
file(MAKE_DIRECTORY "${NETWORKGRPC_GENERATED_DIR}")

set(NETWORKGRPC_GENERATED_HEADERS)
set(generated_sources)

# networkgrpc_generate(<proto> <suffix...>): runs protoc for one schema file.
function(networkgrpc_generate proto)
  set(outputs)
  foreach(suffix IN LISTS ARGN)
    list(APPEND outputs "${NETWORKGRPC_GENERATED_DIR}/${proto}${suffix}")
  endforeach()
  set(root "${CMAKE_CURRENT_SOURCE_DIR}/proto")
  set(grpc_arguments)
  if(".grpc.pb.h" IN_LIST ARGN)
    set(grpc_arguments --grpc_out=${NETWORKGRPC_GENERATED_DIR}
        --plugin=protoc-gen-grpc=${NETWORKGRPC_GRPC_PLUGIN})
  endif()
  add_custom_command(
    OUTPUT ${outputs}
    COMMAND ${NETWORKGRPC_PROTOC} -I "${root}" --cpp_out=${NETWORKGRPC_GENERATED_DIR}
            ${grpc_arguments} "${root}/${proto}.proto"
    DEPENDS "${root}/${proto}.proto" "${root}/ostrevan/common.proto"
    COMMENT "Generating ${proto}" VERBATIM)
  set(headers ${outputs})
  list(FILTER headers INCLUDE REGEX "\\.h$")
  list(FILTER outputs EXCLUDE REGEX "\\.h$")
  set(NETWORKGRPC_GENERATED_HEADERS ${NETWORKGRPC_GENERATED_HEADERS} ${headers} PARENT_SCOPE)
  set(generated_sources ${generated_sources} ${outputs} PARENT_SCOPE)
endfunction()

networkgrpc_generate(ostrevan/common .pb.cc .pb.h)
networkgrpc_generate(ostrevan/networkmanager .pb.cc .pb.h .grpc.pb.cc .grpc.pb.h)
networkgrpc_generate(ostrevan/grpcdapi .pb.cc .pb.h .grpc.pb.cc .grpc.pb.h)

add_library(networkgrpc_wire OBJECT ${generated_sources} ${NETWORKGRPC_GENERATED_HEADERS})
target_compile_features(networkgrpc_wire PUBLIC cxx_std_17)
target_include_directories(networkgrpc_wire SYSTEM PUBLIC "${NETWORKGRPC_GENERATED_DIR}")
target_link_libraries(networkgrpc_wire PUBLIC NetworkgRPC::grpc PRIVATE networkgrpc_hardening networkgrpc_small)
# Applications and daemons use the classes, so they are visible; their inline functions
# need not be, as every user compiles them.
set_target_properties(networkgrpc_wire PROPERTIES
  POSITION_INDEPENDENT_CODE ON VISIBILITY_INLINES_HIDDEN ON)
