// The interfaces: addresses, MAC addresses and fixed labels.
#include <algorithm>
#include <utility>

#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "call_frame/call_frame.h"
#include "network/conversions.h"

namespace nm = ostrevan::networkmanager;
using call_frame::ExceptionLine;
using call_frame::Frame;
using network::kUnresolved;

namespace {

// The switch mode in which both Dante interfaces are in use.
constexpr std::int32_t kBothDantePorts = 1;

// Stored configuration and present state of the requested interfaces.
struct Network {
  nm::InterfacesConfig config;
  nm::InterfacesStatus status;
};

// An empty reply is a failure: the role interfaces exist.
bool Ask(const Frame& frame, const nm::Ids& request, Network& network) {
  auto& client = NetworkManagerClient::GetInstance();
  if (!client.GetNetworkConfig(request, &network.config).ok() || network.config.configs().empty())
    return frame.Fail("libNetworkgRPC: ERROR: error while requesting network config in %s\n");
  if (!client.GetNetworkStatus(request, &network.status).ok() || network.status.status().empty())
    return frame.Fail("libNetworkgRPC: ERROR: error while requesting network status in %s\n");
  return true;
}

// An interface that is missing from a reply is appended without addresses and MAC
// address: callers rely on one record per role.
void Append(std::int32_t id, std::string mac, const Network& network,
            std::vector<NetworkgRPC::InterfaceInfo>& out) {
  NetworkgRPC::InterfaceInfo record;
  if (network::fillInterfaceInfo(id, record, network.config, network.status))
    record.mac = std::move(mac);
  out.push_back(std::move(record));
}

}  // namespace

bool NetworkgRPC::GetDanteInterfacesInfo(std::vector<InterfaceInfo>& out) {
  const Frame frame{"GetDanteInterfacesInfo", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    auto& client = NetworkManagerClient::GetInstance();
    nm::SwitchMode mode;
    if (!client.GetCurrentSwitchMode(&mode).ok()) return false;

    const std::int32_t primary = client.GetDantePrimaryInterfaceID();
    const std::int32_t secondary = client.GetDanteSecondaryInterfaceID();
    const bool with_secondary = mode.id() == kBothDantePorts && secondary != kUnresolved;
    nm::Ids request;
    if (primary != kUnresolved) request.add_ids(primary);
    if (with_secondary) request.add_ids(secondary);

    Network network;
    if (!Ask(frame, request, network)) return false;
    out.reserve(out.size() + static_cast<std::size_t>(request.ids_size()));
    if (primary != kUnresolved) Append(primary, client.GetDantePrimaryInterfaceMAC(), network, out);
    if (with_secondary) Append(secondary, client.GetDanteSecondaryInterfaceMAC(), network, out);
    return true;
  });
}

bool NetworkgRPC::GetControlInterfacesInfo(std::vector<InterfaceInfo>& out) {
  const Frame frame{"GetControlInterfacesInfo", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    auto& client = NetworkManagerClient::GetInstance();
    const std::int32_t control = client.GetControlInterfaceID();
    if (control == kUnresolved) return false;

    nm::Ids request;
    request.add_ids(control);
    Network network;
    if (!Ask(frame, request, network)) return false;
    Append(control, client.GetControlInterfaceMAC(), network, out);
    return true;
  });
}

bool NetworkgRPC::GetAllIPv4(std::vector<InterfaceInfo>& out) {
  const Frame frame{"GetAllIPv4", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    auto& client = NetworkManagerClient::GetInstance();
    nm::Interfaces known;
    if (!client.GetAvailableInterfaces(&known).ok())
      return frame.Fail("libNetworkgRPC: %s: error while requesting informations via gRPC\n");

    nm::Ids request;
    request.mutable_ids()->Reserve(known.interfaces_size());
    for (const nm::Interface& interface : known.interfaces()) request.add_ids(interface.id());
    Network network;
    // Both requests are made even if the first fails; a failure of either means an
    // empty list, not an error.
    const bool configured = client.GetNetworkConfig(request, &network.config).ok();
    const bool live = client.GetNetworkStatus(request, &network.status).ok();
    if (configured && live) network::AppendInterfaces(known, network.config, network.status, out);
    return true;
  });
}

bool NetworkgRPC::GetMACAddress(const std::string& name, std::string& mac) {
  const Frame frame{"GetMACAddress", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    nm::Interfaces known;
    if (!NetworkManagerClient::GetInstance().GetAvailableInterfaces(&known).ok())
      return frame.Fail("libNetworkgRPC: %s: error while requesting informations via gRPC\n");

    auto& list = *known.mutable_interfaces();
    const auto found = std::find_if(list.begin(), list.end(), [&](const nm::Interface& candidate) {
      return candidate.name() == name;
    });
    if (found == list.end())
      return frame.Fail(
          "libNetworkgRPC: %s: error while requesting informations via gRPC, interface not "
          "found\n");
    mac = std::move(*found->mutable_mac());
    return true;
  });
}

bool NetworkgRPC::GetTarvoInterfaceName(int id, std::string& label) {
  const Frame frame{"GetTarvoInterfaceName", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    const auto& client = NetworkManagerClient::GetInstance();
    if (id == client.GetControlInterfaceID()) {
      label = "eth0";
    } else if (id == client.GetDantePrimaryInterfaceID()) {
      label = "dante-0";
    } else if (id == client.GetDanteSecondaryInterfaceID()) {
      label = "dante-1";
    } else {
      call_frame::Print("libNetworkgRPC: wrong interface ID while getting tarvo name: %d\n", id);
      return false;
    }
    return true;
  });
}
