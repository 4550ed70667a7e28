#include "tests/hostile_http2/hostile_peer.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <map>
#include <stdexcept>
#include <utility>

namespace hostile_http2 {
namespace {

constexpr std::size_t kPreface = 24;  // "PRI * HTTP/2.0..." before the client's first frame
constexpr int kConnectMs = 10000;
constexpr int kSilenceMs = 10000;
constexpr int kSilenceAfterChangeMs = 50;  // the client may then wait without end

bool Ready(int descriptor, int limit_ms) {
  pollfd ready{descriptor, POLLIN, 0};
  return poll(&ready, 1, limit_ms) == 1;
}

}  // namespace

HostilePeer::HostilePeer(std::uint32_t seed, std::deque<std::string> given_replies)
    : random(seed),
      replies(std::move(given_replies)),
      // SETTINGS, their acknowledgement, then one Send() per call.
      change_at(random() % (replies.size() + 2)),
      listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener, 1) != 0)
    throw std::runtime_error("cannot listen on loopback");
}

HostilePeer::~HostilePeer() {
  if (listener >= 0) close(listener);
  if (connection >= 0) close(connection);
}

std::string HostilePeer::Url() const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  return "ipv4:127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

void HostilePeer::Serve() {
  if (Ready(listener, kConnectMs)) connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
  close(std::exchange(listener, -1));
  if (connection < 0) return;

  Send({Settings()});
  std::string bytes;
  bool greeted = false;
  std::array<char, 4096> block{};
  while (open && Ready(connection, changed ? kSilenceAfterChangeMs : kSilenceMs)) {
    const ssize_t size = read(connection, block.data(), block.size());
    if (size <= 0) break;
    bytes.append(block.data(), static_cast<std::size_t>(size));
    if (!greeted && bytes.size() < kPreface) continue;
    if (!std::exchange(greeted, true)) bytes.erase(0, kPreface);
    for (Frame frame{}; open && TakeFrame(bytes, frame);) Receive(frame);
  }
  close(std::exchange(connection, -1));
}

void HostilePeer::Receive(const Frame& frame) {
  const bool acknowledged = (frame.flags & kAck) != 0;
  if (frame.type == kSettings && !acknowledged) Send({{kSettings, kAck, 0, ""}});
  if (frame.type == kPing && !acknowledged) Send({{kPing, kAck, 0, frame.payload}});
  if (frame.type != kData || (frame.flags & kEndStream) == 0) return;
  std::string reply;
  if (!replies.empty()) {
    reply = replies.front();
    replies.pop_front();
  }
  Send(Answer(frame.stream, reply));
}

void HostilePeer::Send(std::vector<Frame> frames) {
  std::string bytes;
  if (sendings++ == change_at) {
    changed = true;
    bytes = Change(std::move(frames));
    Remember(bytes);
  } else {
    for (const Frame& frame : frames) bytes += Bytes(frame);
  }
  // Fails if the client has disconnected, as the next read() does.
  if (send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) open = false;
}

void HostilePeer::Remember(std::string bytes) {
  constexpr std::size_t kPrefix = 5;  // of a message: compressed flag, then its size
  std::map<std::uint32_t, std::string> data;
  for (Frame frame{}; TakeFrame(bytes, frame);)
    if (frame.type == kData) data[frame.stream] += frame.payload;
  for (const auto& [stream, text] : data)
    if (text.size() > kPrefix && text.size() > kPrefix + Number(text, 1, 4))
      more_than_a_message = true;
}

// Changes, repeats, drops, swaps or adds one frame. There must be one.
void HostilePeer::ChangeFrames(std::vector<Frame>& frames) {
  const std::size_t at = Below(frames.size());
  const auto place = frames.begin() + static_cast<std::ptrdiff_t>(at);
  const auto byte = static_cast<std::uint8_t>(random());
  Frame& frame = frames[at];
  switch (random() % 9) {
    case 0:
      frame.type = static_cast<std::uint8_t>(byte % 12);
      break;
    case 1:
      frame.flags = byte;
      break;
    case 2:
      frame.stream = byte % 8;
      break;
    case 3:
      frame.payload.resize(Below(frame.payload.size() + 1));
      break;
    case 4:
      frame.payload.append(byte, static_cast<char>(random()));
      break;
    case 5:
      frames.insert(place, Frame(frame));
      break;
    case 6:
      frames.erase(place);
      break;
    case 7:
      std::swap(frame, frames[Below(frames.size())]);
      break;
    default: {
      std::string noise(std::size_t{4} * (byte % 4), '\0');
      for (char& c : noise) c = static_cast<char>(random());
      frames.push_back({static_cast<std::uint8_t>(byte % 11), static_cast<std::uint8_t>(random()),
                        frame.stream, noise});
    }
  }
}

// Changes one to three frames; then up to two single bits; in one of eight cases the
// end is cut off.
std::string HostilePeer::Change(std::vector<Frame> frames) {
  for (std::size_t changes = 1 + Below(3); changes > 0 && !frames.empty(); --changes)
    ChangeFrames(frames);
  std::string bytes;
  for (const Frame& frame : frames) bytes += Bytes(frame);
  for (std::size_t flips = Below(3); flips > 0 && !bytes.empty(); --flips) {
    const unsigned flip = 1U << Below(8);
    char& hit = bytes[Below(bytes.size())];
    hit = static_cast<char>(static_cast<unsigned char>(hit) ^ flip);
  }
  if (Below(8) == 0) bytes.resize(Below(bytes.size() + 1));
  return bytes;
}

}  // namespace hostile_http2
