// networkgrpc interface: the network interfaces and what is stored of them.
#include "tools/interface.h"
#include "tools/commands.h"

#include <algorithm>
#include <array>

#include "state_document/table.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/ipv4.h"
#include "tools/switch.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kNetworkManager;
constexpr const char* kListCommand = "networkgrpc interface list";

struct Role {
  const client::Setting& setting;
  const char* label;
};
const std::array<Role, 3> kRoles{{{client::kControlInterface, "eth0"},
                                  {client::kDantePrimaryInterface, "dante-0"},
                                  {client::kDanteSecondaryInterface, "dante-1"}}};

// As in the library, each role has the first interface of its name, and an empty name
// disables the role.
void AssignRoles(std::vector<Interface>& interfaces) {
  for (const Role& role : kRoles) {
    const std::string name = role.setting.Value();
    const auto found = std::find_if(interfaces.begin(), interfaces.end(),
                                    [&](const Interface& it) { return it.name == name; });
    if (name.empty() || found == interfaces.end() || !found->role.empty()) continue;
    found->role = role.setting.role;
    found->label = role.label;
  }
}

// In Mbit/s: 0 without a link, null if the number of the speed is not known.
Json SpeedToJson(nm::EnLinkSpeed speed) {
  constexpr std::array<int, 4> kSpeeds{0, 10, 100, 1000};
  const auto number = static_cast<std::size_t>(speed);
  return number < kSpeeds.size() ? Json(kSpeeds.at(number)) : Json();
}

Json ListInterfaces(const std::vector<Interface>& interfaces) {
  Json list = Json::array();
  for (const Interface& interface : interfaces) list.push_back(ToJson(interface));
  return {{"interfaces", list}};
}

std::string ShowInterfaceList(const Json& result) { return ShowInterfaces(result["interfaces"]); }

// The second one is in use only if the switch gives it a port of its own.
Json DanteInterfaces() {
  constexpr int kBothDantePorts = 1;
  const bool both = ReadSwitchModeInEffect().id() == kBothDantePorts;
  std::vector<Interface> dante;
  for (const Interface& it : ReadInterfaces())
    if (it.role == client::kDantePrimaryInterface.role ||
        (both && it.role == client::kDanteSecondaryInterface.role))
      dante.push_back(it);
  return ListInterfaces(dante);
}

Json Control() { return ListInterfaces({FindRole(client::kControlInterface.role)}); }

Json Mac(const std::string& name) {
  const Interface interface = FindInterface(name);
  return {{"name", interface.name}, {"mac", interface.mac}};
}

Json Label(int id) {
  for (const Interface& it : ReadInterfaces())
    if (it.id == id && !it.role.empty()) return {{"id", id}, {"label", it.label}};
  throw Failure(ExitStatus::kNotFound,
                "no interface " + std::to_string(id) + " with a role; see '" + kListCommand + "'",
                kDaemon);
}

Json Stored(const std::string& name) {
  const Interface interface = FindInterface(name);
  if (!interface.stored.has_value())
    throw Failure(ExitStatus::kNotFound, "nothing is stored for interface '" + interface.name + "'",
                  kDaemon);
  Json result = {{"id", interface.id}, {"name", interface.name}};
  result.update(ToJson(*interface.stored));
  return result;
}

std::string ShowStored(const Json& result) {
  terminal::Table table;
  for (const char* member : {"name", "mode", "ip", "netmask", "gateway"})
    table.Add({member, Text(result[member])});
  return table.Add({"dns", Joined(result["dns"])}).Text();
}

using RunNamed = Json (*)(const std::string& name);

void AddNamed(Tool& tool, const Command& noun, const std::string& verb, const Verb& rest,
              RunNamed run) {
  const auto name = std::make_shared<std::string>();
  Command command = tool.AddVerb(
      noun, verb, {rest.description, [run, name] { return run(*name); }, rest.show, rest.examples});
  command.Argument("NAME", name.get(), "Name or id of the interface")
      .Offer(Candidates::kInterfaceNames);
}

}  // namespace

std::optional<bool> Interface::IsPending() const {
  if (!stored.has_value() || !status.has_value() || stored->mode() != nm::STATIC)
    return std::nullopt;
  return !status->flag4() || status->ip() != stored->ip() || status->netmask() != stored->netmask();
}

std::vector<Interface> ReadInterfaces() {
  const auto known = Read(rpc::kGetAvailableInterfaces, "list the interfaces");
  std::vector<Interface> interfaces;
  nm::Ids ids;
  for (const auto& it : known.interfaces()) {
    ids.add_ids(it.id());
    interfaces.emplace_back();
    interfaces.back().id = it.id();
    interfaces.back().name = it.name();
    interfaces.back().mac = it.mac();
  }
  const auto stored =
      Read(rpc::kGetNetworkConfig, "read the stored configuration of the interfaces", ids);
  const auto status = Read(rpc::kGetNetworkStatus, "read the state of the interfaces", ids);
  for (Interface& it : interfaces) {
    if (const auto* found = FindById(stored.configs(), it.id)) it.stored = *found;
    if (const auto* found = FindById(status.status(), it.id)) it.status = *found;
  }
  AssignRoles(interfaces);
  return interfaces;
}

Interface FindInterface(const std::string& name_or_id) {
  const std::vector<Interface> all = ReadInterfaces();
  for (const Interface& interface : all)
    if (interface.name == name_or_id) return interface;
  for (const Interface& interface : all)
    if (std::to_string(interface.id) == name_or_id) return interface;
  throw Failure(ExitStatus::kNotFound,
                "interface '" + name_or_id + "' not found; see '" + kListCommand + "'", kDaemon);
}

Interface FindRole(const std::string& role) {
  for (const Interface& interface : ReadInterfaces())
    if (interface.role == role) return interface;
  throw Failure(ExitStatus::kNotFound,
                "no interface has the role " + role + "; see 'networkgrpc doctor'", kDaemon);
}

Json ModeToJson(std::int32_t mode) {
  return state_document::NameOf(state_document::kAddressingModes, mode);
}

Json ToJson(const nm::InterfaceConfig& stored) {
  return {{"mode", ModeToJson(stored.mode())},
          {"ip", stored.ip()},
          {"netmask", stored.netmask()},
          {"gateway", stored.gateway()},
          {"dns", std::vector<std::string>(stored.dns().begin(), stored.dns().end())}};
}

nm::InterfaceConfig WithAddresses(const Interface& interface, const Json& entry) {
  nm::InterfaceConfig config = interface.stored.value_or(nm::InterfaceConfig());
  config.set_id(interface.id);
  config.set_mode(static_cast<nm::EnInterfaceMode>(
      state_document::NumberOf(state_document::kAddressingModes, entry["mode"])));
  config.set_ip(entry["ip"].get<std::string>());
  config.set_netmask(entry["netmask"].get<std::string>());
  config.set_gateway(entry["gateway"].get<std::string>());
  config.clear_dns();
  for (const Json& server : entry["dns"]) config.add_dns(server.get<std::string>());
  return config;
}

void StoreConfiguration(const Interface& interface, const nm::InterfaceConfig& config) {
  Change(rpc::kSetNetworkConfig, "configure interface '" + interface.name + "'", config);
}

std::string AddressText(const std::string& ip, const std::string& netmask) {
  if (ip.empty() || netmask.empty()) return ip;
  const auto length = PrefixLength(netmask);
  return length.has_value() ? ip + "/" + std::to_string(*length) : ip + " " + netmask;
}

// An address that is not in use is not in effect, whatever the daemon sends.
Json ToJson(const Interface& interface) {
  const auto pending = interface.IsPending();
  Json json = {{"id", interface.id},     {"name", interface.name},
               {"role", interface.role}, {"label", interface.label},
               {"mac", interface.mac},   {"stored", nullptr},
               {"in_effect", nullptr},   {"pending", pending ? Json(*pending) : Json()}};
  if (interface.stored.has_value()) json["stored"] = ToJson(*interface.stored);
  if (interface.status.has_value())
    json["in_effect"] = {{"active", interface.IsActive()},
                         {"ip", interface.IsActive() ? interface.status->ip() : ""},
                         {"netmask", interface.IsActive() ? interface.status->netmask() : ""},
                         {"speed_mbit_s", SpeedToJson(interface.status->speed())}};
  return json;
}

std::string ShowInterfaces(const Json& interfaces) {
  terminal::Table table({"ID", "NAME", "ROLE", "LABEL", "STORED", "STORED-ADDRESS", "IN-EFFECT",
                         "PENDING", "MBIT/S", "MAC"});
  const auto address = [](const Json& of) {
    return of.is_null() ? "" : AddressText(of["ip"], of["netmask"]);
  };
  for (const Json& it : interfaces) {
    const Json& stored = it["stored"];
    const Json& in_effect = it["in_effect"];
    table.Add({Text(it["id"]), it["name"], it["role"], it["label"],
               stored.is_null() ? "" : Text(stored["mode"]), address(stored), address(in_effect),
               YesNoOrUnknown(it["pending"]),
               in_effect.is_null() ? "" : Text(in_effect["speed_mbit_s"]), it["mac"]});
  }
  return table.Text();
}

void AddInterface(Tool& tool) {
  const Command noun =
      tool.AddNoun("interface", "Show and set the addresses of the network interfaces", "list");
  tool.AddVerb(noun, "list",
               {"List all interfaces",
                [] { return ListInterfaces(ReadInterfaces()); },
                ShowInterfaceList,
                {"networkgrpc interface list"}});
  tool.AddVerb(noun, "dante",
               {"List the Dante interfaces in use",
                DanteInterfaces,
                ShowInterfaceList,
                {"networkgrpc interface dante"}});
  tool.AddVerb(noun, "control",
               {"Show the control interface",
                Control,
                ShowInterfaceList,
                {"networkgrpc interface control --json"}});
  AddNamed(tool, noun, "stored",
           {"Show the stored configuration, in effect or not",
            {},
            ShowStored,
            {"networkgrpc interface stored lan0"}},
           Stored);
  AddNamed(tool, noun, "mac",
           {"Show the MAC address of an interface",
            {},
            ShowMember("mac"),
            {"networkgrpc interface mac lan1"}},
           Mac);

  const auto id = std::make_shared<int>(0);
  Command label = tool.AddVerb(noun, "label",
                               {"Show the product's label of an interface with a role",
                                [id] { return Label(*id); },
                                ShowMember("label"),
                                {"networkgrpc interface label 1"}});
  label.Argument("ID", id.get(), "The interface's id in 'interface list'")
      .Offer(Candidates::kInterfaceIds);
  AddInterfaceSet(tool, noun);
}

}  // namespace tool
