// What the fuzz targets share: the entry that both libFuzzer and replay.cc call,
// a check that stays in every build, and the splitting of an input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Ends the process when the condition does not hold.
inline void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

/// Takes an input apart from its front. What is missing at its end is 0 or empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest(reinterpret_cast<const char*>(data), size) {}

  std::uint8_t Byte() {
    const std::string_view byte = Bytes(1);
    return byte.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(byte[0]);
  }

  /// -128 to 127.
  int SignedByte() {
    const int byte = Byte();
    return byte < 128 ? byte : byte - 256;
  }

  std::string_view Bytes(std::size_t count) {
    const std::string_view bytes = rest.substr(0, count);
    rest.remove_prefix(bytes.size());
    return bytes;
  }

  /// Bytes with their number, up to 65,535, before them: low byte first.
  std::string_view Part() {
    const std::size_t low = Byte();
    return Bytes(low + 256 * std::size_t{Byte()});
  }

  bool AtEnd() const { return rest.empty(); }

 private:
  std::string_view rest;
};

}  // namespace fuzz
