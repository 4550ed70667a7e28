#include "tools/interfaces.h"

#include <algorithm>

#include "state_document/table.h"
#include "terminal/table.h"
#include "tools/call.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kNetworkManager;

std::string Text(const Json& value) { return value.get<std::string>(); }

}  // namespace

std::vector<NetworkgRPC::InterfaceInfo> AllInterfaces() {
  std::vector<NetworkgRPC::InterfaceInfo> interfaces;
  const char* action = "list the interfaces";
  Do(kDaemon, action, [&] { return NetworkgRPC::GetAllIPv4(interfaces); });
  if (!interfaces.empty()) return interfaces;
  // The library gives an empty list also when only the addresses are missing.
  ostrevan::networkmanager::Interfaces known;
  const bool listed = NetworkManagerClient::GetInstance().GetAvailableInterfaces(&known).ok();
  if (!listed || known.interfaces_size() != 0) throw Explain(kDaemon, action);
  return interfaces;
}

NetworkgRPC::InterfaceInfo FindInterface(const std::string& name_or_id) {
  const auto all = AllInterfaces();
  for (const auto& interface : all)
    if (interface.name == name_or_id) return interface;
  for (const auto& interface : all)
    if (std::to_string(interface.id) == name_or_id) return interface;
  throw Failure(ExitStatus::kNotFound, "there is no interface '" + name_or_id + "'", kDaemon);
}

ostrevan::networkmanager::InterfaceConfig StoredConfiguration(std::int32_t id) {
  ostrevan::networkmanager::Ids request;
  ostrevan::networkmanager::InterfacesConfig reply;
  request.add_ids(id);
  Do(kDaemon, "read the stored configuration",
     [&] { return NetworkManagerClient::GetInstance().GetNetworkConfig(request, &reply).ok(); });
  for (const auto& config : reply.configs())
    if (config.id() == id) return config;
  throw Failure(ExitStatus::kNotFound, "there is no interface " + std::to_string(id), kDaemon);
}

std::string RoleOf(std::int32_t id) {
  const auto& client = NetworkManagerClient::GetInstance();
  if (id == client.GetControlInterfaceID()) return "control";
  if (id == client.GetDantePrimaryInterfaceID()) return "dante-primary";
  if (id == client.GetDanteSecondaryInterfaceID()) return "dante-secondary";
  return "";
}

std::string LabelOf(std::int32_t id) {
  std::string label;
  // Asked only where there is one: the library prints a line where there is none.
  if (!RoleOf(id).empty()) NetworkgRPC::GetTarvoInterfaceName(id, label);
  return label;
}

Json ModeToJson(std::int32_t wire_mode) {
  return state_document::NameOf(state_document::kAddressingModes, wire_mode);
}

Json ToJson(const NetworkgRPC::InterfaceInfo& interface) {
  return {{"id", interface.id},
          {"name", interface.name},
          {"role", RoleOf(interface.id)},
          {"label", LabelOf(interface.id)},
          {"mode", interface.mode == 1 ? "static" : "dynamic"},
          {"active", interface.active},
          {"ip", interface.ip},
          {"netmask", interface.netmask},
          {"mac", interface.mac}};
}

std::string ShowInterfaces(const Json& interfaces) {
  terminal::Table table({"ID", "NAME", "ROLE", "LABEL", "MODE", "ACTIVE", "IP", "NETMASK", "MAC"});
  for (const Json& it : interfaces)
    table.Add({it["id"].dump(), Text(it["name"]), Text(it["role"]), Text(it["label"]),
               Text(it["mode"]), it["active"] ? "yes" : "no", Text(it["ip"]), Text(it["netmask"]),
               Text(it["mac"])});
  return table.Text();
}

}  // namespace tool
