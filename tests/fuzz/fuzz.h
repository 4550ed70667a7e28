// What the fuzz targets share: the function that libFuzzer or replay.cc calls, a check
// that is active in every build, a reader that splits an input into parts, a file.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Aborts the process if the condition does not hold.
inline void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

/// Reads an input from front to back. Beyond its end, numbers are 0 and strings empty.
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

  /// A length of two bytes, low byte first, then that many bytes.
  std::string_view Part() {
    const std::size_t low = Byte();
    return Bytes(low + 256 * std::size_t{Byte()});
  }

  /// Parses a part as this message; false if it is not one.
  template <class Message>
  bool ParsePart(Message& message) {
    const std::string_view bytes = Part();
    return message.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()));
  }

  bool AtEnd() const { return rest.empty(); }

 private:
  std::string_view rest;
};

/// A file in memory, for parsers that read one.
class File {
 public:
  explicit File(std::string_view content) : descriptor(memfd_create("fuzz", 0)) {
    Check(write(descriptor, content.data(), content.size()) == static_cast<ssize_t>(content.size()),
          "the file is written");
  }
  ~File() { close(descriptor); }

  File(const File&) = delete;
  File& operator=(const File&) = delete;

  std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

 private:
  const int descriptor;
};

/// Checks that a terminal shows the text as it is: lines without control characters.
inline void CheckPrintable(const std::string& text) {
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    Check(byte == '\n' || (byte >= 0x20 && byte != 0x7f), "no control character is printed");
  }
  for (std::size_t at = 0; (at = text.find('\xc2', at)) != std::string::npos; ++at)
    Check(static_cast<unsigned char>(text[at + 1]) >= 0xa0, "no control character is printed");
}

}  // namespace fuzz
