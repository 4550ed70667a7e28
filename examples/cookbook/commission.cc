// Commission a device: factory reset, names, time server, audio settings; every change verified.
//
// Not on a device in use: the reset and a new latency interrupt it, and after the reset the device
// may have another address.
#include <iostream>
#include <string>

#include "DantegRPC.h"
#include "NetworkgRPC.h"

namespace {

template <class Value>
bool Verified(const std::string& setting, bool confirmed, bool (*read)(Value&),
              const Value& expected) {
  Value now{};
  const bool same = read(now) && now == expected;
  // A failed change may have been made, a confirmed one may read differently.
  std::cout << setting << ": "
            << (same        ? "set"
                : confirmed ? "confirmed, but not read back"
                            : "not set")
            << std::endl;
  return confirmed && same;
}

bool SetNtp(const std::string& server) {
  return NetworkgRPC::SetNTPServer(server, /*reload=*/true);  // replaces the stored list
}

template <class Value, class Argument>
bool Set(const std::string& setting, bool (*write)(Argument), bool (*read)(Value&),
         const Value& value) {
  return Verified(setting, write(value), read, value);
}

}  // namespace

int main() {
  if (!NetworkgRPC::FactoryReset()) return 1;  // the network settings only, not the Dante module
  const bool done =
      Set<std::string>("host name", NetworkgRPC::SetHostname, NetworkgRPC::GetHostname, "hall") &&
      Set<std::string>("NTP server", SetNtp, NetworkgRPC::GetNTPServer, "192.168.10.1") &&
      Set<std::string>("device name", DantegRPC::SetName, DantegRPC::GetName, "Hall") &&
      Set("latency", DantegRPC::SetLatency, DantegRPC::GetLatency, 2000) &&
      Set("PTP slave only", DantegRPC::SetPtpSlaveOnly, DantegRPC::GetPtpSlaveOnly, true) &&
      Set("transmission disabled", DantegRPC::SetDisableTx, DantegRPC::GetDisableTx, false);
  return done ? 0 : 1;
}
