#include "simulator/network_service.h"

#include <optional>
#include <utility>

#include "simulator/network_rules.h"

namespace wire = ostrevan::networkmanager;
using grpc::ServerContext;
using grpc::Status;
using ostrevan::common::Empty;

namespace simulator {
namespace {

template <class List>
std::vector<std::string> Texts(const List& list) {
  return {list.begin(), list.end()};
}

void ToWire(const Interface& interface, wire::Interface& out) {
  out.set_id(interface.id);
  out.set_name(interface.name);
  out.set_mac(interface.mac);
}

void ToWire(const SwitchMode& mode, wire::SwitchMode& out) {
  out.set_id(mode.id);
  out.set_name(mode.name);
}

void StatusToWire(const Interface& interface, wire::InterfaceStatus& out) {
  out.set_id(interface.id);
  out.set_ip(interface.live.ip);
  out.set_netmask(interface.live.netmask);
  out.set_flag4(!interface.live.ip.empty());
  out.set_speed(static_cast<wire::EnLinkSpeed>(interface.speed));
  out.set_flag6(interface.flag6);
}

void ConfigToWire(const Interface& interface, wire::InterfaceConfig& out) {
  const InterfaceConfig& stored = interface.stored;
  out.set_id(interface.id);
  out.set_mode(static_cast<wire::EnInterfaceMode>(stored.mode));
  out.set_ip(stored.addresses.ip);
  out.set_netmask(stored.addresses.netmask);
  out.set_gateway(stored.addresses.gateway);
  for (const std::string& server : stored.addresses.dns) out.add_dns(server);
  out.set_flag7(stored.flag7);
  out.set_flag8(stored.flag8);
}

// None for wireless settings: every interface is wired.
std::optional<InterfaceConfig> ConfigFromWire(const wire::InterfaceConfig& in) {
  if (in.has_wifi()) return std::nullopt;
  InterfaceConfig config;
  config.mode = static_cast<Addressing>(in.mode());
  config.addresses = {in.ip(), in.netmask(), in.gateway(), Texts(in.dns())};
  config.flag7 = in.flag7();
  config.flag8 = in.flag8();
  return config;
}

}  // namespace

Status NetworkService::GetAvailableInterfaces(ServerContext*, const Empty*,
                                              wire::Interfaces* reply) {
  device.With([&](const Device& it) {
    for (const Interface& interface : it.network.interfaces)
      ToWire(interface, *reply->add_interfaces());
  });
  return Status::OK;
}

// The reply lists what was asked for; an unknown interface has nothing to list.
Status NetworkService::GetNetworkConfig(ServerContext*, const wire::Ids* request,
                                        wire::InterfacesConfig* reply) {
  device.With([&](const Device& it) {
    for (const std::int32_t id : request->ids())
      if (const Interface* interface = FindInterface(it.network, id))
        ConfigToWire(*interface, *reply->add_configs());
  });
  return Status::OK;
}

Status NetworkService::SetNetworkConfig(ServerContext*, const wire::InterfaceConfig* request,
                                        wire::Success* reply) {
  const std::optional<InterfaceConfig> config = ConfigFromWire(*request);
  reply->set_success(config.has_value() && device.With([&](Device& it) {
    return StoreConfig(it.network, request->id(), *config);
  }));
  return Status::OK;
}

Status NetworkService::GetNetworkStatus(ServerContext*, const wire::Ids* request,
                                        wire::InterfacesStatus* reply) {
  device.With([&](const Device& it) {
    for (const std::int32_t id : request->ids())
      if (const Interface* interface = FindInterface(it.network, id))
        StatusToWire(*interface, *reply->add_status());
  });
  return Status::OK;
}

Status NetworkService::GetAvailableSwitchModes(ServerContext*, const Empty*,
                                               wire::SwitchModes* reply) {
  device.With([&](const Device& it) {
    for (const SwitchMode& mode : it.network.switch_modes) ToWire(mode, *reply->add_modes());
  });
  return Status::OK;
}

Status NetworkService::GetSwitchMode(ServerContext*, const Empty*, wire::SwitchMode* reply) {
  device.With([&](const Device& it) {
    ToWire(DescribeSwitchMode(it.network, it.network.stored_switch_mode), *reply);
  });
  return Status::OK;
}

Status NetworkService::GetSwitchModeStatus(ServerContext*, const Empty*, wire::SwitchMode* reply) {
  device.With([&](const Device& it) {
    ToWire(DescribeSwitchMode(it.network, it.network.live_switch_mode), *reply);
  });
  return Status::OK;
}

Status NetworkService::SetSwitchMode(ServerContext*, const wire::Id* request,
                                     wire::Success* reply) {
  reply->set_success(
      device.With([&](Device& it) { return StoreSwitchMode(it.network, request->id()); }));
  return Status::OK;
}

Status NetworkService::GetHostname(ServerContext*, const Empty*, wire::Hostname* reply) {
  reply->set_hostname(device.With([](const Device& it) { return it.network.hostname; }));
  return Status::OK;
}

Status NetworkService::SetHostname(ServerContext*, const wire::Hostname* request,
                                   wire::Success* reply) {
  reply->set_success(device.With(
      [&](Device& it) { return simulator::SetHostname(it.network, request->hostname()); }));
  return Status::OK;
}

Status NetworkService::GetNTPServer(ServerContext*, const Empty*, wire::NTPServer* reply) {
  for (std::string& server : device.With([](const Device& it) { return it.network.stored_ntp; }))
    reply->add_servers(std::move(server));
  return Status::OK;
}

Status NetworkService::SetNTPServer(ServerContext*, const wire::NTPServer* request,
                                    wire::Success* reply) {
  device.With([&](Device& it) { StoreNtp(it.network, Texts(request->servers())); });
  reply->set_success(true);
  return Status::OK;
}

Status NetworkService::ReloadNetworkConfig(ServerContext*, const Empty*, wire::Success* reply) {
  device.With([](Device& it) { ApplyNetwork(it.network); });
  reply->set_success(true);
  return Status::OK;
}

Status NetworkService::GetRouting(ServerContext*, const Empty*, wire::Routing* reply) {
  reply->set_gateway(device.With([](const Device& it) { return DefaultGateway(it.network); }));
  return Status::OK;
}

Status NetworkService::GetDNSList(ServerContext*, const Empty*, wire::DNS* reply) {
  for (std::string& server : device.With([](const Device& it) { return DnsInUse(it.network); }))
    reply->add_dns(std::move(server));
  return Status::OK;
}

Status NetworkService::ReloadNTPConfig(ServerContext*, const Empty*, wire::Success* reply) {
  device.With([](Device& it) { ApplyNtp(it.network); });
  reply->set_success(true);
  return Status::OK;
}

Status NetworkService::FactoryReset(ServerContext*, const Empty*, wire::Success* reply) {
  device.With([](Device& it) { ResetNetwork(it); });
  reply->set_success(true);
  return Status::OK;
}

// The reply has no flag to refuse with, so that an unknown interface is an error.
Status NetworkService::GetRoutingForInterface(ServerContext*, const wire::Id* request,
                                              wire::Routing* reply) {
  return device.With([&](const Device& it) {
    const Interface* interface = FindInterface(it.network, request->id());
    if (interface == nullptr) return Status(grpc::StatusCode::NOT_FOUND, "no such interface");
    reply->set_gateway(interface->live.gateway);
    return Status::OK;
  });
}

}  // namespace simulator
