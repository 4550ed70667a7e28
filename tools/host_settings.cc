// networkgrpc hostname, ntp, dns, gateway, factory-reset: the host's settings.
#include "tools/host_settings.h"

#include <memory>

#include "tools/call.h"
#include "tools/commands.h"
#include "tools/interface.h"
#include "tools/pending.h"

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
  return "NTP servers: " + Joined(result["servers"]) + ShowApplied(result);
}

Json Reset(Tool& tool) {
  tool.Confirm({"the network settings will be reset to factory defaults"});
  Change(rpc::kFactoryReset, "reset the network settings");
  return {{"reset", true}};
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

// A single setting: its noun alone shows it, with a value sets it.
// Not in a conditional expression: if the call throws, code of GCC 12 uses the list too late.
Json HostnameAsJson() { return {{"hostname", ReadHostname()}}; }

void AddHostname(Tool& tool) {
  const auto name = std::make_shared<std::optional<std::string>>();
  const auto show_set = [](const Json& result) {
    return "host name is set to '" + Text(result["hostname"]) + "'\n";
  };
  Verb setting{"Show or set the host name",
               [name] { return *name ? SetHostnameTo(**name) : HostnameAsJson(); },
               [name, show_set](const Json& result) {
                 return *name ? show_set(result) : Text(result["hostname"]) + "\n";
               },
               {"networkgrpc hostname", "networkgrpc hostname studio-amp"}};
  Command noun = tool.AddVerb(tool.Top(), "hostname", setting);
  noun.OptionalArgument("NAME", name.get(), "The new name, set exactly as given");
  setting.examples.clear();
  Command get = tool.AddOldSpelling(noun, "get", setting);
  Command set = tool.AddOldSpelling(noun, "set", setting);
  set.Argument("NAME", name.get(), "The new name");

  const auto amplifier = std::make_shared<std::string>();
  Command derive = tool.AddVerb(
      noun, "from-ampname",
      {"Set a host name made from the amplifier's name: its letters, in lower case, and digits",
       [amplifier] { return SetHostnameTo(HostnameFrom(*amplifier)); },
       show_set,
       {"networkgrpc hostname from-ampname 'Studio Amp 2'"}});
  derive.Argument("NAME", amplifier.get(), "The amplifier's name");
  for (Command* verb : {&noun, &get, &set, &derive}) tool.Undoable(*verb, Daemon::kNetworkManager);
}

struct NtpArguments {
  std::vector<std::string> servers;
  bool reload = false;
};

Json Ntp(Tool& tool, const NtpArguments& arguments) {
  if (!arguments.servers.empty()) return SetNtp(tool, arguments.servers, arguments.reload);
  if (arguments.reload) throw Failure(ExitStatus::kUsage, "--reload requires SERVER");
  return {{"servers", ReadNtpServers()}};
}

std::string ShowNtp(const Json& result) {
  return result.contains("stored") ? ShowSetNtp(result) : ShowLines(result["servers"]);
}

void AddNtp(Tool& tool) {
  const auto arguments = std::make_shared<NtpArguments>();
  const auto add_options = [&tool, arguments](Command& verb) {
    verb.Flag("--reload", &arguments->reload, "Apply the stored NTP configuration at once");
    tool.AddYes(verb);
    tool.Undoable(verb, Daemon::kNetworkManager);
  };
  Verb setting{"Show or store the list of NTP servers",
               [&tool, arguments] { return Ntp(tool, *arguments); },
               ShowNtp,
               {"networkgrpc ntp", "networkgrpc ntp time.example --reload --yes"}};
  Command noun = tool.AddVerb(tool.Top(), "ntp", setting);
  noun.OptionalArgument("SERVER", &arguments->servers, "Names or addresses");
  add_options(noun);
  setting.examples.clear();
  Command get = tool.AddOldSpelling(noun, "get", setting);
  tool.Undoable(get, Daemon::kNetworkManager);
  Command set = tool.AddOldSpelling(noun, "set", setting);
  set.Argument("SERVER", &arguments->servers, "Names or addresses");
  add_options(set);
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
  tool.AddVerb(tool.Top(), "dns",
               {"Show the DNS servers in use, one per line",
                [] {
                  return Json{{"dns", ReadDnsServers()}};
                },
                [](const Json& result) { return ShowLines(result["dns"]); },
                {"networkgrpc dns"}});
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
