// networkgrpc interface: the network interfaces and what is stored of them.
#include "tools/interface.h"

#include <algorithm>

#include "state_document/table.h"
#include "terminal/arguments.h"
#include "terminal/table.h"
#include "tools/call.h"

namespace tool {
namespace {

namespace nm = ostrevan::networkmanager;

constexpr auto kDaemon = Daemon::kNetworkManager;
using Info = NetworkgRPC::InterfaceInfo;
using Records = std::vector<Info>;

NetworkManagerClient& Client() { return NetworkManagerClient::GetInstance(); }

// The library prints an error line for an id without a role.
std::string LabelOf(std::int32_t id) {
  std::string label;
  if (!RoleOf(id).empty()) NetworkgRPC::GetTarvoInterfaceName(id, label);
  return label;
}

Json List() {
  Json interfaces = Json::array();
  for (const auto& interface : AllInterfaces()) interfaces.push_back(ToJson(interface));
  return {{"interfaces", interfaces}};
}

// Records of an interface with a role have neither name nor id.
Json OfRoles(const Records& records, const std::vector<std::string>& roles) {
  Json interfaces = Json::array();
  for (std::size_t i = 0; i < records.size(); ++i)
    interfaces.push_back({{"role", roles.at(i)},
                          {"mode", ModeToJson(records[i].mode)},
                          {"active", records[i].active},
                          {"ip", records[i].ip},
                          {"netmask", records[i].netmask},
                          {"mac", records[i].mac}});
  return {{"interfaces", interfaces}};
}

std::string ShowOfRoles(const Json& result) {
  terminal::Table table({"ROLE", "MODE", "ACTIVE", "IP", "NETMASK", "MAC"});
  for (const Json& it : result["interfaces"])
    table.Add(
        {it["role"], it["mode"], it["active"] ? "yes" : "no", it["ip"], it["netmask"], it["mac"]});
  return table.Text();
}

Json Dante() {
  Records records;
  Do(kDaemon, "read the Dante interfaces",
     [&] { return NetworkgRPC::GetDanteInterfacesInfo(records); });
  std::vector<std::string> roles = {client::kDantePrimaryInterface.role,
                                    client::kDanteSecondaryInterface.role};
  if (Client().GetDantePrimaryInterfaceID() == -1) roles.erase(roles.begin());
  return OfRoles(records, roles);
}

Json Control() {
  Records records;
  const auto has_role = [] {
    if (Client().GetControlInterfaceID() != -1) return true;
    AllInterfaces();  // throws if the role is unresolved for want of a list
    return false;
  };
  DoTo({"doctor", has_role}, kDaemon, "read the control interface",
       [&] { return NetworkgRPC::GetControlInterfacesInfo(records); });
  return OfRoles(records, {client::kControlInterface.role});
}

Json Mac(const std::string& name) {
  std::string mac;
  const auto is_listed = [&] {
    const Records all = AllInterfaces();
    return std::any_of(all.begin(), all.end(), [&](const Info& it) { return it.name == name; });
  };
  DoTo({"interface list", is_listed}, kDaemon, "read the MAC address of interface '" + name + "'",
       [&] { return NetworkgRPC::GetMACAddress(name, mac); });
  return {{"name", name}, {"mac", mac}};
}

Json Label(int id) {
  std::string label;
  const auto has_label = [] {
    AllInterfaces();  // throws if roles are unresolved for want of a list
    return false;
  };
  DoTo({"interface list", has_label}, kDaemon, "read the label of interface " + std::to_string(id),
       [&] { return NetworkgRPC::GetTarvoInterfaceName(id, label); });
  return {{"id", id}, {"label", label}};
}

Json Stored(const std::string& name) {
  const auto interface = FindInterface(name);
  const auto config = StoredConfiguration(interface.id);
  return {{"id", interface.id},
          {"name", interface.name},
          {"mode", ModeToJson(config.mode())},
          {"ip", config.ip()},
          {"netmask", config.netmask()},
          {"gateway", config.gateway()},
          {"dns", std::vector<std::string>(config.dns().begin(), config.dns().end())}};
}

std::string ShowStored(const Json& result) {
  terminal::Table table;
  std::string dns;
  for (const std::string server : result["dns"]) dns += (dns.empty() ? "" : ", ") + server;
  for (const char* member : {"name", "mode", "ip", "netmask", "gateway"})
    table.Add({member, Text(result[member])});
  return table.Add({"dns", dns}).Text();
}

using RunNamed = Json (*)(const std::string& name);

void AddNamed(Tool& tool, CLI::App& noun, const std::string& verb, const Verb& rest, RunNamed run) {
  const auto name = std::make_shared<std::string>();
  CLI::App& command = tool.AddVerb(
      noun, verb, {rest.description, [run, name] { return run(*name); }, rest.show, rest.examples});
  tool.Offer(command.add_option("NAME", *name, "Name of the interface, such as lan0")->required(),
             Candidates::kInterfaceNames);
}

}  // namespace

Records AllInterfaces() {
  Records interfaces;
  const char* action = "list the interfaces";
  Do(kDaemon, action, [&] { return NetworkgRPC::GetAllIPv4(interfaces); });
  if (!interfaces.empty()) return interfaces;
  // The library's list is also empty if only configuration or status is missing.
  nm::Interfaces known;
  const bool listed = Client().GetAvailableInterfaces(&known).ok();
  if (!listed || known.interfaces_size() != 0) throw Explain(kDaemon, action);
  return interfaces;
}

Info FindInterface(const std::string& name_or_id) {
  const auto all = AllInterfaces();
  for (const auto& interface : all)
    if (interface.name == name_or_id) return interface;
  for (const auto& interface : all)
    if (std::to_string(interface.id) == name_or_id) return interface;
  throw Failure(ExitStatus::kNotFound,
                "interface '" + name_or_id + "' not found; see 'networkgrpc interface list'",
                kDaemon);
}

nm::InterfaceConfig StoredConfiguration(std::int32_t id) {
  nm::Ids request;
  nm::InterfacesConfig reply;
  request.add_ids(id);
  const std::string action = "read the stored configuration of interface " + std::to_string(id);
  Do(kDaemon, action, [&] { return Client().GetNetworkConfig(request, &reply).ok(); });
  for (const auto& config : reply.configs())
    if (config.id() == id) return config;
  throw Failure(ExitStatus::kNotFound, "cannot " + action + ": not found", kDaemon);
}

std::string RoleOf(std::int32_t id) {
  if (id == Client().GetControlInterfaceID()) return client::kControlInterface.role;
  if (id == Client().GetDantePrimaryInterfaceID()) return client::kDantePrimaryInterface.role;
  if (id == Client().GetDanteSecondaryInterfaceID()) return client::kDanteSecondaryInterface.role;
  return "";
}

Json ModeToJson(std::int32_t mode) {
  return state_document::NameOf(state_document::kAddressingModes, mode);
}

Json ToJson(const Info& interface) {
  return {{"id", interface.id},
          {"name", interface.name},
          {"role", RoleOf(interface.id)},
          {"label", LabelOf(interface.id)},
          {"mode", ModeToJson(interface.mode)},
          {"active", interface.active},
          {"ip", interface.ip},
          {"netmask", interface.netmask},
          {"mac", interface.mac}};
}

std::string ShowInterfaces(const Json& interfaces) {
  terminal::Table table({"ID", "NAME", "ROLE", "LABEL", "MODE", "ACTIVE", "IP", "NETMASK", "MAC"});
  for (const Json& it : interfaces)
    table.Add({Text(it["id"]), Text(it["name"]), Text(it["role"]), Text(it["label"]),
               Text(it["mode"]), it["active"] ? "yes" : "no", Text(it["ip"]), Text(it["netmask"]),
               Text(it["mac"])});
  return table.Text();
}

void AddInterface(Tool& tool) {
  CLI::App& noun =
      tool.AddNoun("interface", "Show and set the addresses of the network interfaces", "list");
  tool.AddVerb(noun, "list",
               {"List all interfaces",
                List,
                [](const Json& result) { return ShowInterfaces(result["interfaces"]); },
                {"networkgrpc interface list"}});
  tool.AddVerb(
      noun, "dante",
      {"List the Dante interfaces in use", Dante, ShowOfRoles, {"networkgrpc interface dante"}});
  tool.AddVerb(noun, "control",
               {"Show the control interface",
                Control,
                ShowOfRoles,
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
  CLI::App& label = tool.AddVerb(noun, "label",
                                 {"Show the product's label of an interface with a role",
                                  [id] { return Label(*id); },
                                  ShowMember("label"),
                                  {"networkgrpc interface label 1"}});
  tool.Offer(
      terminal::AddInteger(label, "ID", *id, "The interface's id in 'interface list'")->required(),
      Candidates::kInterfaceIds);
  AddInterfaceSet(tool, noun);
}

}  // namespace tool
