// The HTTP/2 frames that a gRPC server sends, as bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace hostile_http2 {

enum FrameType : std::uint8_t { kData = 0, kHeaders = 1, kReset = 3, kSettings = 4, kPing = 6 };

constexpr std::uint8_t kEndStream = 0x1;
constexpr std::uint8_t kAck = 0x1;
constexpr std::uint8_t kEndHeaders = 0x4;

struct Frame {
  std::uint8_t type;
  std::uint8_t flags;
  std::uint32_t stream;
  std::string payload;
};

/// The nine bytes of the frame header, then the payload.
std::string Bytes(const Frame& frame);

/// Moves the first complete frame from `bytes` to `frame`; false if there is none.
bool TakeFrame(std::string& bytes, Frame& frame);

/// `count` bytes as a big-endian number.
std::size_t Number(const std::string& bytes, std::size_t at, std::size_t count);

/// The server's first frame.
Frame Settings();
/// HEADERS, DATA with the message, HEADERS with grpc-status 0.
std::vector<Frame> Answer(std::uint32_t stream, const std::string& message);

}  // namespace hostile_http2
