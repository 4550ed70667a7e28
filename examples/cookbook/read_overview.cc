// Read an overview of a device: identity, audio settings, host.
//
// A function returns false on failure and leaves its output unchanged, so a value is shown only if
// the function returned true. GetNTPServer and GetCurrentDNS also return false, without an error
// line, if there is no server.
#include <iostream>
#include <string>

#include "DantegRPC.h"
#include "NetworkgRPC.h"

namespace {

template <class Value>
bool Show(const std::string& label, bool (*read)(Value&)) {
  Value value{};
  const bool done = read(value);
  std::cout << label << ": ";
  if (done)
    std::cout << value << '\n';
  else
    std::cout << "-\n";
  return done;
}

}  // namespace

int main() {
  std::cout << std::boolalpha;
  bool complete = true;
  complete &= Show("device name", DantegRPC::GetName);
  complete &= Show("model", DantegRPC::GetModelName);
  complete &= Show("model version", DantegRPC::GetModelVersion);
  complete &= Show("firmware", DantegRPC::GetFirmwareVersion);
  complete &= Show("software", DantegRPC::GetSoftwareVersion);
  complete &= Show("sample rate", DantegRPC::GetSampleRate);
  complete &= Show("latency", DantegRPC::GetLatency);
  complete &= Show("AES67", DantegRPC::GetAES67Status);
  complete &= Show("transmission disabled", DantegRPC::GetDisableTx);
  complete &= Show("PTP slave only", DantegRPC::GetPtpSlaveOnly);
  int transmit = 0;
  int receive = 0;
  complete &= DantegRPC::GetChannelsNum(transmit, receive);
  std::cout << "channels: " << transmit << " transmit, " << receive << " receive\n";
  complete &= Show("host name", NetworkgRPC::GetHostname);
  complete &= Show("default gateway", NetworkgRPC::GetDefaultGateway);
  Show("NTP server", NetworkgRPC::GetNTPServer);
  Show("DNS server", NetworkgRPC::GetCurrentDNS);
  return complete ? 0 : 1;
}
