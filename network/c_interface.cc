// The C functions, and the host name made from the amplifier's name.
#include <algorithm>
#include <cstring>

#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"
#include "call_frame/call_frame.h"

static_assert(sizeof(cInterfaceInfo) == 50, "callers lay out arrays of 50-byte entries");

namespace {

constexpr const char* kDefaultHostname = "unknown";

// Holds "unknown" when the library is loaded and is not reset between calls: a
// name of 255 or more characters is not terminated behind the characters kept, so
// what an earlier call left there is sent, too. Callers rely on it.
char hostnameBuffer[256] = "unknown";
constexpr int kLongestName = sizeof(hostnameBuffer) - 1;

// `field` must be all NUL. A string that does not fit is cut.
template <std::size_t size>
void CopyText(const std::string& text, char (&field)[size]) {
  std::memcpy(field, text.c_str(), std::min(std::strlen(text.c_str()), size - 1));
}

// Returns the character in lower case, or NUL if it is discarded. Does not depend
// on the locale.
char HostnameCharacter(char c) {
  if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) return c;
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return '\0';
}

// Copies the characters to keep to hostnameBuffer and returns their number.
int FilterHostname(const char* name) {
  int count = 0;
  for (int i = 0; i < kLongestName; ++i) {
    if (name[i] == '\0') {
      hostnameBuffer[count] = '\0';
      break;
    }
    if (const char kept = HostnameCharacter(name[i])) {
      hostnameBuffer[count++] = kept;
    } else {
      call_frame::Print("libNetworkgRPC: discard charapter: %c %d %d\n", name[i], i, count);
    }
  }
  hostnameBuffer[kLongestName] = '\0';
  return count;
}

int Result(bool done) { return done ? 0 : -1; }

}  // namespace

int cGetControlInterface(cInterfaceInfo* out, int max) {
  std::vector<NetworkgRPC::InterfaceInfo> records;
  if (!NetworkgRPC::GetControlInterfacesInfo(records)) return -1;
  const int count = std::min(max, static_cast<int>(records.size()));
  if (count <= 0) return -1;
  for (int i = 0; i < count; ++i) {
    const NetworkgRPC::InterfaceInfo& record = records[static_cast<std::size_t>(i)];
    cInterfaceInfo& entry = out[i];
    std::memset(&entry, 0, sizeof entry);
    CopyText(record.ip, entry.ip);
    CopyText(record.netmask, entry.netmask);
    CopyText(record.mac, entry.mac);
  }
  return count;
}

int cGetCurrentSwitchMode(int* mode) {
  NetworkgRPC::SwitchMode current;
  if (!NetworkgRPC::GetCurrentSwitchMode(current)) return -1;
  *mode = current.id;
  return 0;
}

int setampname(const char* name, size_t length) {
  const bool given = length != 0 && name != nullptr && name[0] != '\0';
  const int count = given ? FilterHostname(name) : 0;
  if (count == 0) {
    call_frame::Print("libNetworkgRPC: setting hostname to default\n");
    return Result(NetworkgRPC::SetHostname(kDefaultHostname));
  }
  call_frame::Print("libNetworkgRPC: setting hostname: %s %d\n", hostnameBuffer, count);
  return Result(NetworkgRPC::SetHostname(hostnameBuffer));
}
