// A C++ program that uses the installed clients and messages to call the daemon of
// daemon.cc.
#include <DAPIClient.h>
#include <NetworkManagerClient.h>

#include <cstdio>

namespace {

int failures = 0;

void Expect(bool holds, const char* what) {
  if (holds) return;
  std::printf("failed: %s\n", what);
  ++failures;
}

// The answer of the installed server base classes to a method without a handler.
bool IsUnimplemented(const grpc::Status& status) {
  return status.error_code() == 12 && status.error_message().empty() &&
         status.error_details().empty();
}

}  // namespace

int main() {
  auto& network = NetworkManagerClient::GetInstance();
  ostrevan::networkmanager::SwitchMode mode;
  ostrevan::networkmanager::Routing routing;
  Expect(network.GetCurrentSwitchMode(&mode).ok() && mode.id() == 2,
         "the switch mode in effect is 2");
  Expect(IsUnimplemented(network.GetRouting(&routing)), "GetRouting is not implemented");
  Expect(network.GetControlInterfaceID() == -1, "the control interface is unresolved");

  auto& dante = DAPIClient::GetInstance();
  ostrevan::grpcdapi::Name name;
  ostrevan::grpcdapi::Latency latency;
  ostrevan::grpcdapi::Success success;
  Expect(dante.GetName(&name).ok() && name.name() == "stage left", "the device is stage left");
  Expect(IsUnimplemented(dante.GetLatency(&latency)), "GetLatency is not implemented");
  Expect(IsUnimplemented(dante.SetName(name, &success)), "SetName is not implemented");
  return failures;
}
