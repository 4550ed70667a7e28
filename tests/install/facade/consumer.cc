// A C++ program that uses the installed facades to call the daemon of daemon.cc.
#include <DantegRPC.h>
#include <NetworkgRPC.h>

#include <cstdio>
#include <string>

namespace {

int failures = 0;

void Expect(bool holds, const char* what) {
  if (holds) return;
  std::printf("failed: %s\n", what);
  ++failures;
}

}  // namespace

int main() {
  NetworkgRPC::SwitchMode mode;
  std::string server;
  std::string device;
  int rate = 7;

  Expect(NetworkgRPC::GetCurrentSwitchMode(mode) && mode.id == 2 && mode.name == "redundant",
         "the switch mode in effect is 2, redundant");
  Expect(NetworkgRPC::SetHostname("amp7"), "the daemon accepts the host name amp7");
  Expect(!NetworkgRPC::SetHostname("amp8"), "the daemon rejects the host name amp8");
  Expect(!NetworkgRPC::GetNTPServer(server) && server.empty(), "there is no NTP handler");
  Expect(DantegRPC::GetName(device) && device == "stage left", "the device is named stage left");
  Expect(!DantegRPC::GetSampleRate(rate) && rate == 7, "there is no sample rate handler");
  return failures;
}
