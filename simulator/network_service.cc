// The network-manager daemon's RPCs.
#include <optional>

#include "simulator/find_by_id.h"
#include "simulator/network_rules.h"
#include "simulator/service.h"

namespace nm = ostrevan::networkmanager;
using grpc::Status;
using ostrevan::common::Empty;

namespace simulator {
namespace {

template <class List>
std::vector<std::string> Strings(const List& list) {
  return {list.begin(), list.end()};
}

void ToWire(const Interface& interface, nm::Interface& out) {
  out.set_id(interface.id);
  out.set_name(interface.name);
  out.set_mac(interface.mac);
}

void ToWire(const SwitchMode& mode, nm::SwitchMode& out) {
  out.set_id(mode.id);
  out.set_name(mode.name);
}

void StatusToWire(const Interface& interface, nm::InterfaceStatus& out) {
  out.set_id(interface.id);
  out.set_ip(interface.live.ip);
  out.set_netmask(interface.live.netmask);
  out.set_flag4(!interface.live.ip.empty());
  out.set_speed(static_cast<nm::EnLinkSpeed>(interface.speed));
  out.set_flag6(interface.flag6);
}

void ConfigToWire(const Interface& interface, nm::InterfaceConfig& out) {
  const InterfaceConfig& stored = interface.stored;
  out.set_id(interface.id);
  out.set_mode(static_cast<nm::EnInterfaceMode>(stored.mode));
  out.set_ip(stored.addresses.ip);
  out.set_netmask(stored.addresses.netmask);
  out.set_gateway(stored.addresses.gateway);
  for (const std::string& server : stored.addresses.dns) out.add_dns(server);
  out.set_flag7(stored.flag7);
  out.set_flag8(stored.flag8);
}

// None for wireless settings: every interface is wired.
std::optional<InterfaceConfig> ConfigFromWire(const nm::InterfaceConfig& in) {
  if (in.has_wifi()) return std::nullopt;
  InterfaceConfig config;
  config.mode = static_cast<Addressing>(in.mode());
  config.addresses = {in.ip(), in.netmask(), in.gateway(), Strings(in.dns())};
  config.flag7 = in.flag7();
  config.flag8 = in.flag8();
  return config;
}

std::vector<Method> InterfaceMethods() {
  return {
      Read("GetAvailableInterfaces",
           [](const Device& it, nm::Interfaces& reply) {
             for (const Interface& interface : it.network.interfaces)
               ToWire(interface, *reply.add_interfaces());
           }),
      // An unknown interface is left out of the reply, here and below.
      Read("GetNetworkConfig",
           [](const Device& it, const nm::Ids& request, nm::InterfacesConfig& reply) {
             for (const std::int32_t id : request.ids())
               if (const Interface* interface = FindById(it.network.interfaces, id))
                 ConfigToWire(*interface, *reply.add_configs());
             return Status::OK;
           }),
      Read("GetNetworkStatus",
           [](const Device& it, const nm::Ids& request, nm::InterfacesStatus& reply) {
             for (const std::int32_t id : request.ids())
               if (const Interface* interface = FindById(it.network.interfaces, id))
                 StatusToWire(*interface, *reply.add_status());
             return Status::OK;
           }),
      Change<nm::Success>("SetNetworkConfig",
                          [](Device& it, const nm::InterfaceConfig& request) {
                            const std::optional<InterfaceConfig> config = ConfigFromWire(request);
                            return config.has_value() &&
                                   StoreConfig(it.network, request.id(), *config);
                          }),
      Change<nm::Success>("ReloadNetworkConfig",
                          [](Device& it, const Empty&) {
                            ApplyNetwork(it.network);
                            return true;
                          }),
      Read("GetRouting", [](const Device& it,
                            nm::Routing& reply) { reply.set_gateway(DefaultGateway(it.network)); }),
      // The reply has no success field, so an unknown interface fails the call.
      Read("GetRoutingForInterface",
           [](const Device& it, const nm::Id& request, nm::Routing& reply) {
             const Interface* interface = FindById(it.network.interfaces, request.id());
             if (interface == nullptr)
               return Status(grpc::StatusCode::NOT_FOUND, "no such interface");
             reply.set_gateway(interface->live.gateway);
             return Status::OK;
           }),
      Read("GetDNSList",
           [](const Device& it, nm::DNS& reply) {
             for (const std::string& server : DnsInUse(it.network)) reply.add_dns(server);
           }),
  };
}

std::vector<Method> SwitchModeMethods() {
  return {
      Read("GetAvailableSwitchModes",
           [](const Device& it, nm::SwitchModes& reply) {
             for (const SwitchMode& mode : it.network.switch_modes)
               ToWire(mode, *reply.add_modes());
           }),
      Read("GetSwitchMode",
           [](const Device& it, nm::SwitchMode& reply) {
             ToWire(DescribeSwitchMode(it.network, it.network.stored_switch_mode), reply);
           }),
      Read("GetSwitchModeStatus",
           [](const Device& it, nm::SwitchMode& reply) {
             ToWire(DescribeSwitchMode(it.network, it.network.live_switch_mode), reply);
           }),
      Change<nm::Success>("SetSwitchMode",
                          [](Device& it, const nm::Id& request) {
                            return StoreSwitchMode(it.network, request.id());
                          }),
  };
}

std::vector<Method> HostMethods() {
  return {
      Read("GetHostname",
           [](const Device& it, nm::Hostname& reply) { reply.set_hostname(it.network.hostname); }),
      Change<nm::Success>("SetHostname",
                          [](Device& it, const nm::Hostname& request) {
                            return SetHostname(it.network, request.hostname());
                          }),
      Read("GetNTPServer",
           [](const Device& it, nm::NTPServer& reply) {
             for (const std::string& server : it.network.stored_ntp) reply.add_servers(server);
           }),
      Change<nm::Success>("SetNTPServer",
                          [](Device& it, const nm::NTPServer& request) {
                            it.network.stored_ntp = Strings(request.servers());
                            return true;
                          }),
      Change<nm::Success>("ReloadNTPConfig",
                          [](Device& it, const Empty&) {
                            ApplyNtp(it.network);
                            return true;
                          }),
      Change<nm::Success>("FactoryReset",
                          [](Device& it, const Empty&) {
                            ResetNetwork(it);
                            return true;
                          }),
  };
}

}  // namespace

std::vector<Method> NetworkMethods() {
  std::vector<Method> methods;
  for (const auto& some : {InterfaceMethods(), SwitchModeMethods(), HostMethods()})
    methods.insert(methods.end(), some.begin(), some.end());
  return methods;
}

}  // namespace simulator
