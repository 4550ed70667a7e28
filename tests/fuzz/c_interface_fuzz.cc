// The C functions on top of a facade that this file replaces: setampname() turns names
// into host names, cGetControlInterface() copies records into fixed-size fields.
//
// Input: one byte for `max`, three strings for a record, then names, until the end.
// Each string has its length in front.
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstring>
#include <vector>

#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"
#include "call_frame/call_frame.h"
#include "tests/fuzz/fuzz.h"

namespace {

using fuzz::Check;

// State of the replaced facade.
std::vector<NetworkgRPC::InterfaceInfo> given;
std::string printed;
std::string hostname;

constexpr std::size_t kBuffer = 256;

// The host name that must be sent, computed without the library's own filter. The
// buffer keeps its contents from call to call, as the library's does.
std::string ExpectedName(const std::string& name, std::string& lines) {
  static std::array<char, kBuffer> buffer = {"unknown"};
  std::size_t count = 0;
  const std::size_t looked_at = std::min(name.size(), kBuffer - 1);
  for (std::size_t i = 0; i < looked_at; ++i) {
    const char c = name[i];
    const bool upper = c >= 'A' && c <= 'Z';
    if (upper || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
      buffer[count++] = upper ? static_cast<char>(c | 0x20) : c;
    } else {
      lines += std::string("libNetworkgRPC: discard charapter: ") + c + ' ' + std::to_string(i) +
               ' ' + std::to_string(count) + '\n';
    }
  }
  if (name.size() < kBuffer - 1 && !name.empty()) buffer[count] = '\0';
  buffer[kBuffer - 1] = '\0';
  if (count == 0) {
    lines += "libNetworkgRPC: setting hostname to default\n";
    return "unknown";
  }
  lines += std::string("libNetworkgRPC: setting hostname: ") + buffer.data() + ' ' +
           std::to_string(count) + '\n';
  return buffer.data();
}

// The name is in memory of exactly its size, so that AddressSanitizer reports a read
// beyond it. A name of 255 characters or more needs no NUL.
void CheckName(std::string_view bytes) {
  const std::string name(bytes.substr(0, bytes.find('\0')));
  const bool ends = name.size() < kBuffer - 1;
  std::vector<char> memory(name.begin(), name.end());
  if (ends) memory.push_back('\0');
  std::string lines;
  const std::string expected = ExpectedName(name, lines);

  printed.clear();
  const int result = setampname(memory.data(), 1);
  Check(result == (expected.size() % 2 == 0 ? 0 : -1), "the result is that of SetHostname");
  Check(hostname == expected, "the host name is made of letters and digits");
  Check(printed == lines, "one line per discarded character");
}

void CheckField(const char* field, std::size_t size, const std::string& text) {
  const std::string cut = text.substr(0, std::min(text.find('\0'), size - 1));
  std::string expected(size, '\0');
  cut.copy(expected.data(), size);
  Check(std::memcmp(field, expected.data(), size) == 0, "a field is cut and padded with NUL");
}

void CheckRecord(int max) {
  std::vector<cInterfaceInfo> out(static_cast<std::size_t>(std::max(max, 0)));
  const int count = cGetControlInterface(out.data(), max);
  Check(count == (max >= 1 && !given.empty() ? 1 : -1), "one entry, or none");
  if (count != 1) return;
  CheckField(out[0].ip, sizeof out[0].ip, given[0].ip);
  CheckField(out[0].netmask, sizeof out[0].netmask, given[0].netmask);
  CheckField(out[0].mac, sizeof out[0].mac, given[0].mac);
}

}  // namespace

void call_frame::Print(const char* format, ...) {
  std::array<char, 1024> line{};
  va_list arguments;
  va_start(arguments, format);
  const int size = std::vsnprintf(line.data(), line.size(), format, arguments);
  va_end(arguments);
  printed.append(line.data(), static_cast<std::size_t>(size));
}

bool NetworkgRPC::GetControlInterfacesInfo(std::vector<InterfaceInfo>& out) {
  out = given;
  return !given.empty();
}

bool NetworkgRPC::GetCurrentSwitchMode(SwitchMode& mode) {
  mode.id = static_cast<std::int32_t>(given.size());
  return !given.empty();
}

bool NetworkgRPC::SetHostname(const std::string& name) {
  hostname = name;
  return name.size() % 2 == 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const int max = input.SignedByte();
  given.clear();
  CheckRecord(max);
  int mode = 99;
  Check(cGetCurrentSwitchMode(&mode) == -1 && mode == 99, "without a mode the output is unchanged");

  NetworkgRPC::InterfaceInfo record;
  record.ip = input.Part();
  record.netmask = input.Part();
  record.mac = input.Part();
  given.push_back(record);
  CheckRecord(max);
  Check(cGetCurrentSwitchMode(&mode) == 0 && mode == 1, "the output is the mode's id");

  while (!input.AtEnd()) CheckName(input.Part());
  Check(setampname(nullptr, 1) == -1 && hostname == "unknown", "a null name sets the default");
  return 0;
}
