// networkgrpc interface: which interfaces there are, and what is stored of them.
#include "NetworkgRPC.h"
#include "terminal/printable.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/interface_set.h"
#include "tools/interfaces.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kNetworkManager;
using Records = std::vector<NetworkgRPC::InterfaceInfo>;

Json List() {
  Json interfaces = Json::array();
  for (const auto& interface : AllInterfaces()) interfaces.push_back(ToJson(interface));
  return {{"interfaces", interfaces}};
}

std::string ShowList(const Json& result) { return ShowInterfaces(result["interfaces"]); }

// The records of the two functions that know roles carry neither name nor id.
Json OfRole(const Records& records, const std::vector<std::string>& roles) {
  Json interfaces = Json::array();
  for (std::size_t i = 0; i < records.size(); ++i)
    interfaces.push_back({{"role", roles.at(i)},
                          {"mode", records[i].mode == 1 ? "static" : "dynamic"},
                          {"active", records[i].active},
                          {"ip", records[i].ip},
                          {"netmask", records[i].netmask},
                          {"mac", records[i].mac}});
  return {{"interfaces", interfaces}};
}

std::string ShowOfRole(const Json& result) {
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
  std::vector<std::string> roles = {"dante-primary", "dante-secondary"};
  const auto& client = NetworkManagerClient::GetInstance();
  if (client.GetDantePrimaryInterfaceID() == -1) roles.erase(roles.begin());
  return OfRole(records, roles);
}

// Unresolved roles fail without a call to the daemon; what stands behind that is
// a list of interfaces without one of the name, or no list.
[[noreturn]] void ThrowNotFound(const std::string& action, const std::string& not_found) {
  const Failure failure = Explain(kDaemon, action);
  if (failure.status == ExitStatus::kUnreachable) throw failure;
  AllInterfaces();
  throw Failure(ExitStatus::kNotFound, not_found, kDaemon);
}

Json Control() {
  Records records;
  const char* action = "read the control interface";
  deadline::Asking(kDaemon);
  if (!NetworkgRPC::GetControlInterfacesInfo(records)) {
    if (NetworkManagerClient::GetInstance().GetControlInterfaceID() == -1)
      ThrowNotFound(action, "there is no control interface");
    throw Explain(kDaemon, action);
  }
  return OfRole(records, {"control"});
}

Json Mac(const std::string& name) {
  std::string mac;
  deadline::Asking(kDaemon);
  if (!NetworkgRPC::GetMACAddress(name, mac)) {
    FindInterface(name);  // throws when it is this
    throw Explain(kDaemon, "read the MAC address");
  }
  return {{"name", name}, {"mac", mac}};
}

Json Label(int id) {
  std::string label;
  deadline::Asking(kDaemon);
  if (!NetworkgRPC::GetTarvoInterfaceName(id, label))
    ThrowNotFound("tell the interface's label",
                  "interface " + std::to_string(id) + " has no label");
  return {{"id", id}, {"label", label}};
}

Json Stored(const std::string& name) {
  const auto interface = FindInterface(name);
  const auto config = StoredConfiguration(interface.id);
  Json dns = Json::array();
  for (const std::string& server : config.dns()) dns.push_back(server);
  return {{"id", interface.id}, {"name", interface.name},      {"mode", ModeToJson(config.mode())},
          {"ip", config.ip()},  {"netmask", config.netmask()}, {"gateway", config.gateway()},
          {"dns", dns}};
}

std::string ShowStored(const Json& result) {
  terminal::Table table;
  std::string dns;
  for (const std::string server : result["dns"]) dns += (dns.empty() ? "" : ", ") + server;
  table.Add({"name", result["name"]}).Add({"mode", NameText(result["mode"])});
  for (const char* member : {"ip", "netmask", "gateway"}) table.Add({member, result[member]});
  return table.Add({"dns", dns}).Text();
}

Verb Named(const std::string& description, Json (*run)(const std::string&),
           const std::shared_ptr<std::string>& name, std::function<std::string(const Json&)> show,
           const std::string& example) {
  return {description, [run, name] { return run(*name); }, std::move(show), {example}};
}

std::function<std::string(const Json&)> Member(const char* member) {
  return [member](const Json& result) {
    return terminal::Printable(result[member].get<std::string>()) + "\n";
  };
}

}  // namespace

void AddInterface(Tool& tool) {
  CLI::App& noun =
      tool.AddNoun("interface", "Network interfaces and their IPv4 addresses.", "list");
  tool.AddVerb(noun, "list",
               {"Lists every interface.", List, ShowList, {"networkgrpc interface list"}});
  tool.AddVerb(noun, "dante",
               {"Tells the Dante interfaces that are in use.",
                Dante,
                ShowOfRole,
                {"networkgrpc interface dante"}});
  tool.AddVerb(noun, "control",
               {"Tells the control interface.",
                Control,
                ShowOfRole,
                {"networkgrpc interface control --json"}});

  const auto name = std::make_shared<std::string>();
  CLI::App& stored = tool.AddVerb(noun, "stored",
                                  Named("Tells the stored configuration, in use or not.", Stored,
                                        name, ShowStored, "networkgrpc interface stored lan0"));
  CLI::App& mac = tool.AddVerb(noun, "mac",
                               Named("Tells an interface's MAC address.", Mac, name, Member("mac"),
                                     "networkgrpc interface mac lan1"));
  for (CLI::App* verb : {&stored, &mac})
    tool.Offer(verb->add_option("NAME", *name, "Name of the interface, such as lan0")->required(),
               Candidates::kInterfaceNames);

  const auto id = std::make_shared<int>(0);
  CLI::App& label = tool.AddVerb(noun, "label",
                                 {"Tells the product's label of an interface with a role.",
                                  [id] { return Label(*id); },
                                  Member("label"),
                                  {"networkgrpc interface label 1"}});
  tool.Offer(label.add_option("ID", *id, "The interface's id in 'interface list'")->required(),
             Candidates::kInterfaceIds);
  AddInterfaceSet(tool, noun);
}

}  // namespace tool
