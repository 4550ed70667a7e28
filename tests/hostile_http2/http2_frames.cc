#include "tests/hostile_http2/http2_frames.h"

#include <utility>

namespace hostile_http2 {
namespace {

constexpr std::size_t kHeaderSize = 9;

std::string BigEndian(std::size_t value, int bytes) {
  std::string text;
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
    text += static_cast<char>(value >> shift & 0xFFU);
  return text;
}

// A literal header field, not compressed and not indexed.
std::string Field(const std::string& name, const std::string& value) {
  return std::string(1, '\0') + static_cast<char>(name.size()) + name +
         static_cast<char>(value.size()) + value;
}

}  // namespace

std::size_t Number(const std::string& bytes, std::size_t at, std::size_t count) {
  std::size_t value = 0;
  for (std::size_t i = at; i < at + count; ++i)
    value = value << 8U | static_cast<unsigned char>(bytes[i]);
  return value;
}

std::string Bytes(const Frame& frame) {
  return BigEndian(frame.payload.size(), 3) + static_cast<char>(frame.type) +
         static_cast<char>(frame.flags) + BigEndian(frame.stream, 4) + frame.payload;
}

bool TakeFrame(std::string& bytes, Frame& frame) {
  if (bytes.size() < kHeaderSize) return false;
  const std::size_t size = Number(bytes, 0, 3);
  if (bytes.size() < kHeaderSize + size) return false;
  frame = {static_cast<std::uint8_t>(bytes[3]), static_cast<std::uint8_t>(bytes[4]),
           static_cast<std::uint32_t>(Number(bytes, 5, 4)), bytes.substr(kHeaderSize, size)};
  bytes.erase(0, kHeaderSize + size);
  return true;
}

Frame Settings() { return {kSettings, 0, 0, ""}; }

std::vector<Frame> Answer(std::uint32_t stream, const std::string& message) {
  const std::string status_200 = "\x88";  // index into HPACK's static table
  const std::string head = status_200 + Field("content-type", "application/grpc");
  const std::string data = std::string(1, '\0') + BigEndian(message.size(), 4) + message;
  return {{kHeaders, kEndHeaders, stream, head},
          {kData, 0, stream, data},
          {kHeaders, kEndHeaders | kEndStream, stream, Field("grpc-status", "0")}};
}

}  // namespace hostile_http2
