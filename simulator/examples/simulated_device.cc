// A test of an application that sets the name of its device: what does it do when
// the device rejects the first request?
#include <simulator/simulator.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "DantegRPC.h"

int main() {
  // Listens on free ports; the library reads them from the environment.
  simulator::Simulator device = simulator::Builder()
                                    .Channels(2, 4)
                                    .With([](simulator::Device& it) { it.dante.name = "Hall"; })
                                    .Inject("SetName:reject,times=1")
                                    .Start();
  setenv("network_manager_url", device.NetworkManagerUrl().c_str(), 1);
  setenv("grpc_dapi_url", device.DapiUrl().c_str(), 1);

  const bool first = DantegRPC::SetName("Stage");
  const bool second = DantegRPC::SetName("Stage");
  const bool received = device.WaitForCalls("SetName", 2);
  const std::string name = device.WithDevice([](simulator::Device& it) { return it.dante.name; });

  std::cout << "first: " << first << ", second: " << second << ", name: " << name << '\n';
  for (const simulator::ReceivedCall& call : device.Calls())
    std::cout << call.method << ' ' << call.request << ' ' << call.fault << '\n';
  device.Stop();
  return !first && second && received && name == "Stage" ? EXIT_SUCCESS : EXIT_FAILURE;
}
