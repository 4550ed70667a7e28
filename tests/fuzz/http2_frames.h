// The frames of HTTP/2 that an honest gRPC server sends, as bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

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

/// Header, nine bytes, and payload.
std::string Bytes(const Frame& frame);

/// Takes the first whole frame off the front of `bytes`; false when there is none.
bool TakeFrame(std::string& bytes, Frame& frame);

/// `count` bytes as a number, the highest first.
std::size_t Number(const std::string& bytes, std::size_t at, std::size_t count);

/// SETTINGS, as the server's first frame.
Frame Settings();
/// HEADERS, DATA with the message, HEADERS with status 0.
std::vector<Frame> Answer(std::uint32_t stream, const std::string& message);

}  // namespace fuzz
