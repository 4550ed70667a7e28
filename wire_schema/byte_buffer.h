// gRPC's byte buffers as strings, for servers and clients that know no schema.
#pragma once

#include <grpcpp/support/byte_buffer.h>

#include <string>
#include <vector>

namespace wire_schema {

inline std::string ToString(const grpc::ByteBuffer& buffer) {
  std::vector<grpc::Slice> slices;
  std::string bytes;
  buffer.Dump(&slices);
  for (const grpc::Slice& slice : slices)
    bytes.append(reinterpret_cast<const char*>(slice.begin()), slice.size());
  return bytes;
}

inline grpc::ByteBuffer ToByteBuffer(const std::string& bytes) {
  const grpc::Slice slice(bytes);
  return {&slice, 1};
}

}  // namespace wire_schema
