// Setting how an interface gets its IPv4 address.
#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "call_frame/call_frame.h"
#include "network/conversions.h"

namespace nm = ostrevan::networkmanager;
using call_frame::Confirmed;
using call_frame::ExceptionLine;
using call_frame::Frame;

namespace {

// Stores the configuration, calls `report` if the daemon did not confirm it, and
// requests the reload in both cases. A failed reload is only printed: the
// configuration stays stored.
template <class Report>
bool Configure(const Frame& frame, std::int32_t id, const NetworkgRPC::InterfaceInfo& info,
               bool reload, Report&& report) {
  auto& client = NetworkManagerClient::GetInstance();
  nm::InterfaceConfig request;
  network::ToWire(id, info, request);
  nm::Success set;
  const bool stored = Confirmed(client.SetNetworkConfig(request, &set), set);
  if (!stored) report();
  nm::Success reloaded;
  if (reload && !Confirmed(client.ReloadNetworkConfig(&reloaded), reloaded))
    frame.Fail("libNetworkgRPC: ERROR: error while reloading network config in %s\n");
  return stored;
}

}  // namespace

bool NetworkgRPC::SetDanteIP(const InterfaceInfo& info, int secondary, bool reload) {
  const Frame frame{"SetDanteIP", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    const auto& client = NetworkManagerClient::GetInstance();
    const std::int32_t id = secondary != 0 ? client.GetDanteSecondaryInterfaceID()
                                           : client.GetDantePrimaryInterfaceID();
    if (id == network::kUnresolved) return false;
    return Configure(frame, id, info, reload, [&] {
      frame.Fail("libNetworkgRPC: ERROR: error while setting dante network config in %s\n");
    });
  });
}

bool NetworkgRPC::SetControlIP(const InterfaceInfo& info, bool reload) {
  const Frame frame{"SetControlIP", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    const std::int32_t id = NetworkManagerClient::GetInstance().GetControlInterfaceID();
    return Configure(frame, id, info, reload, [&] {
      frame.Fail("libNetworkgRPC: ERROR: error while setting control network config in %s\n");
    });
  });
}

bool NetworkgRPC::SetGenericIP(int id, const InterfaceInfo& info, bool reload) {
  const Frame frame{"SetGenericIP", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    return Configure(frame, id, info, reload, [&] {
      call_frame::Print(
          "libNetworkgRPC: ERROR: error while setting interface %d network config in %s\n", id,
          frame.name);
    });
  });
}
