// networkgrpc hostname, ntp, dns, gateway, factory-reset: the host's settings.
#include "tools/host_settings.h"

#include <memory>

#include "tools/call.h"
#include "tools/interface.h"
#include "tools/pending.h"
#include "tools/tool.h"

namespace tool {
namespace {

template <class List>
std::vector<std::string> Strings(const List& list) {
  return {list.begin(), list.end()};
}

// The letters of the amplifier's name, in lower case, and its digits.
std::string HostnameFrom(const std::string& amplifier) {
  std::string name;
  for (const char c : amplifier) {
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) name += c;
    if (c >= 'A' && c <= 'Z') name += static_cast<char>(c - 'A' + 'a');
  }
  return name.empty() ? "unknown" : name;
}

Json SetHostnameTo(const std::string& name) {
  SetHostname(name);
  return {{"hostname", name}};
}

Json SetNtp(Tool& tool, const std::vector<std::string>& servers, bool reload) {
  if (reload)
    tool.Confirm({"the NTP servers will be stored, and the reload restarts the time service"});
  StoreNtpServers(servers);
  Json result = {{"servers", servers}, {"stored", true}, {"applied", false}};
  if (reload) Apply("the list of NTP servers", result, ReloadNtp);
  return result;
}

std::string ShowLines(const Json& strings) {
  std::string text;
  for (const Json& it : strings) text += Text(it) + "\n";
  return text;
}

std::string ShowSetNtp(const Json& result) {
  std::string servers;
  for (const Json& it : result["servers"]) servers += (servers.empty() ? "" : ", ") + Text(it);
  return "NTP servers: " + servers + ShowApplied(result);
}

Json Reset(Tool& tool) {
  tool.Confirm({"the network settings will be reset to factory defaults"});
  Change(rpc::kFactoryReset, "reset the network settings");
  return {{"reset", true}};
}

// A command that shows a list of strings.
Verb Lists(const char* description, const char* member, std::vector<std::string> (*read)(),
           const char* example) {
  return {description,
          [member, read] {
            return Json{{member, read()}};
          },
          [member](const Json& result) { return ShowLines(result[member]); },
          {example}};
}

Json Gateway(const std::optional<std::string>& of_interface) {
  if (!of_interface) return {{"interface", nullptr}, {"gateway", ReadGateway()}};
  const Interface interface = FindInterface(*of_interface);
  nm::Id id;
  id.set_id(interface.id);
  const auto routing = Read(rpc::kGetRoutingForInterface,
                            "read the gateway of interface '" + interface.name + "'", id);
  return {{"interface", interface.name}, {"gateway", routing.gateway()}};
}

void AddHostname(Tool& tool) {
  const Command noun = tool.AddNoun("hostname", "Show and set the host name", "get");
  tool.AddVerb(noun, "get",
               {"Show the host name",
                [] {
                  return Json{{"hostname", ReadHostname()}};
                },
                ShowMember("hostname"),
                {"networkgrpc hostname get"}});
  const auto name = std::make_shared<std::string>();
  const auto show = [](const Json& result) {
    return "host name is set to '" + Text(result["hostname"]) + "'\n";
  };
  Command set = tool.AddVerb(noun, "set",
                             {"Set the host name, exactly as given",
                              [name] { return SetHostnameTo(*name); },
                              show,
                              {"networkgrpc hostname set studio-amp"}});
  Command derive = tool.AddVerb(
      noun, "from-ampname",
      {"Set a host name made from the amplifier's name: its letters, in lower case, and digits",
       [name] { return SetHostnameTo(HostnameFrom(*name)); },
       show,
       {"networkgrpc hostname from-ampname 'Studio Amp 2'"}});
  set.Argument("NAME", name.get(), "The host name");
  derive.Argument("NAME", name.get(), "The amplifier's name");
  for (Command* verb : {&set, &derive}) tool.Undoable(*verb, Daemon::kNetworkManager);
}

void AddNtp(Tool& tool) {
  const Command noun = tool.AddNoun("ntp", "Show and set the NTP servers", "get");
  tool.AddVerb(noun, "get",
               Lists("Show the stored NTP servers, one per line", "servers", ReadNtpServers,
                     "networkgrpc ntp get"));
  const auto servers = std::make_shared<std::vector<std::string>>();
  const auto reload = std::make_shared<bool>(false);
  Command set = tool.AddVerb(noun, "set",
                             {"Store the list of NTP servers",
                              [&tool, servers, reload] { return SetNtp(tool, *servers, *reload); },
                              ShowSetNtp,
                              {"networkgrpc ntp set time.example --reload --yes"}});
  set.Argument("SERVER", servers.get(), "Names or addresses");
  set.Flag("--reload", reload.get(), "Apply the stored NTP configuration at once");
  tool.AddYes(set);
  tool.Undoable(set, Daemon::kNetworkManager);
}

}  // namespace

std::string ReadHostname() { return Read(rpc::kGetHostname, "read the host name").hostname(); }

void SetHostname(const std::string& name) {
  nm::Hostname request;
  request.set_hostname(name);
  Change(rpc::kSetHostname, "set the host name", request);
}

std::vector<std::string> ReadNtpServers() {
  return Strings(Read(rpc::kGetNTPServer, "read the NTP servers").servers());
}

void StoreNtpServers(const std::vector<std::string>& servers) {
  nm::NTPServer request;
  for (const std::string& server : servers) request.add_servers(server);
  Change(rpc::kSetNTPServer, "store the NTP servers", request);
}

std::vector<std::string> ReadDnsServers() {
  return Strings(Read(rpc::kGetDNSList, "read the DNS servers").dns());
}

std::string ReadGateway() { return Read(rpc::kGetRouting, "read the default gateway").gateway(); }

void AddHostSettings(Tool& tool) {
  AddHostname(tool);
  AddNtp(tool);
  tool.AddVerb(
      tool.Top(), "dns",
      Lists("Show the DNS servers in use, one per line", "dns", ReadDnsServers, "networkgrpc dns"));
  const auto interface = std::make_shared<std::optional<std::string>>();
  Command gateway = tool.AddVerb(tool.Top(), "gateway",
                                 {"Show the default gateway, or that of an interface",
                                  [interface] { return Gateway(*interface); },
                                  ShowMember("gateway"),
                                  {"networkgrpc gateway", "networkgrpc gateway lan0"}});
  gateway.OptionalArgument("INTERFACE", interface.get(), "Name or id of the interface")
      .Offer(Candidates::kInterfaceNames);
  Command reset = tool.AddVerb(tool.Top(), "factory-reset",
                               {"Reset the network settings to factory defaults",
                                [&tool] { return Reset(tool); },
                                [](const Json&) { return "network settings are reset\n"; },
                                {"networkgrpc factory-reset --yes"}});
  tool.AddYes(reset);
  tool.Undoable(reset, Daemon::kNetworkManager);
}

}  // namespace tool
