// Print a device's name, host name, sample rate and receive channels.
#include <iostream>

#include "DantegRPC.h"
#include "NetworkgRPC.h"

int main() {
  std::string host;
  std::string device;
  int rate = 0;
  std::vector<DantegRPC::Channel> inputs;
  if (!NetworkgRPC::GetHostname(host) || !DantegRPC::GetName(device) ||
      !DantegRPC::GetSampleRate(rate) || !DantegRPC::GetRxChannels(inputs))
    return 1;
  std::cout << device << " on " << host << ", " << rate << " Hz\n";
  for (const auto& input : inputs) std::cout << "input " << input.id << ": " << input.name << '\n';
}
