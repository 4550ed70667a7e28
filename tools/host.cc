// networkgrpc hostname, ntp, dns, gateway, factory-reset: the host's settings.
#include "tools/host.h"
#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"
#include "terminal/printable.h"
#include "tools/call.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kNetworkManager;
using Text = std::shared_ptr<std::string>;

std::function<std::string(const Json&)> Member(const char* member) {
  return [member](const Json& result) {
    return terminal::Printable(result[member].get<std::string>()) + "\n";
  };
}

Json HostnameResult() { return {{"hostname", ReadHostname()}}; }

Json SetHostname(const std::string& name) {
  Do(kDaemon, "set the host name", [&] { return NetworkgRPC::SetHostname(name); });
  return {{"hostname", name}};
}

// What the library made of the name is read back: the library does not tell.
Json SetFromAmplifierName(const std::string& name) {
  Do(kDaemon, "set the host name", [&] { return setampname(name.c_str(), name.size()) == 0; });
  return HostnameResult();
}

Json SetNtp(const std::string& server, bool reload) {
  Do(kDaemon, "set the NTP server", [&] { return NetworkgRPC::SetNTPServer(server, reload); });
  return {{"server", server}, {"reload", reload}};
}

Json Reset(Tool& tool) {
  tool.Confirm("the network settings go back to factory defaults", "Reset them?");
  Do(kDaemon, "reset the network settings", NetworkgRPC::FactoryReset);
  return {{"reset", true}};
}

void AddHostname(Tool& tool) {
  CLI::App& noun = tool.AddNoun("hostname", "The host name.", "get");
  tool.AddVerb(
      noun, "get",
      {"Tells the host name.", HostnameResult, Member("hostname"), {"networkgrpc hostname get"}});
  const auto name = std::make_shared<std::string>();
  const auto show = [](const Json& result) {
    return "host name is set to '" + terminal::Printable(result["hostname"].get<std::string>()) +
           "'\n";
  };
  CLI::App& set = tool.AddVerb(noun, "set",
                               {"Sets the host name, exactly as given.",
                                [name] { return SetHostname(*name); },
                                show,
                                {"networkgrpc hostname set studio-amp"}});
  CLI::App& derive = tool.AddVerb(
      noun, "from-ampname",
      {"Sets a host name made of the amplifier's name: its letters, in lower case, and digits.",
       [name] { return SetFromAmplifierName(*name); },
       show,
       {"networkgrpc hostname from-ampname 'Studio Amp 2'"}});
  set.add_option("NAME", *name, "The host name")->required();
  derive.add_option("NAME", *name, "The amplifier's name")->required();
}

void AddNtp(Tool& tool) {
  CLI::App& noun = tool.AddNoun("ntp", "The NTP server.", "get");
  tool.AddVerb(noun, "get",
               {"Tells the first NTP server; an empty line when there is none.",
                [] {
                  return Json{{"server", ReadNtpServer()}};
                },
                Member("server"),
                {"networkgrpc ntp get"}});
  const auto server = std::make_shared<std::string>();
  const auto reload = std::make_shared<bool>(false);
  CLI::App& set =
      tool.AddVerb(noun, "set",
                   {"Stores the only NTP server.",
                    [server, reload] { return SetNtp(*server, *reload); },
                    [](const Json& result) {
                      return "NTP server is set to '" +
                             terminal::Printable(result["server"].get<std::string>()) +
                             (result["reload"] ? "', stored and applied\n" : "', stored\n");
                    },
                    {"networkgrpc ntp set time.example --reload"}});
  set.add_option("SERVER", *server, "Its name or address")->required();
  set.add_flag("--reload", *reload, "Apply the stored NTP configuration at once");
}

}  // namespace

std::string ReadHostname() {
  return Get<std::string>(kDaemon, "read the host name", NetworkgRPC::GetHostname);
}

std::string ReadNtpServer() {
  std::string server;
  deadline::Asking(kDaemon);
  if (NetworkgRPC::GetNTPServer(server)) return server;
  ostrevan::networkmanager::NTPServer reply;  // none is false, too
  if (!NetworkManagerClient::GetInstance().GetNTPServer(&reply).ok())
    throw Explain(kDaemon, "read the NTP server");
  return "";
}

std::string ReadDns() {
  std::string dns;
  deadline::Asking(kDaemon);
  if (NetworkgRPC::GetCurrentDNS(dns)) return dns;
  ostrevan::networkmanager::DNS reply;  // none is false, too
  if (!NetworkManagerClient::GetInstance().GetDNSList(&reply).ok())
    throw Explain(kDaemon, "read the DNS server");
  return "";
}

std::string ReadGateway() {
  return Get<std::string>(kDaemon, "read the default gateway", NetworkgRPC::GetDefaultGateway);
}

void AddHost(Tool& tool) {
  AddHostname(tool);
  AddNtp(tool);
  tool.AddVerb(tool.app, "dns",
               {"Show the first DNS server in use; an empty line if none",
                [] {
                  return Json{{"dns", ReadDns()}};
                },
                Member("dns"),
                {"networkgrpc dns"}});
  tool.AddVerb(tool.app, "gateway",
               {"Show the default gateway; an empty line if none",
                [] {
                  return Json{{"gateway", ReadGateway()}};
                },
                Member("gateway"),
                {"networkgrpc gateway"}});
  CLI::App& reset = tool.AddVerb(tool.app, "factory-reset",
                                 {"Reset the network settings to factory defaults",
                                  [&tool] { return Reset(tool); },
                                  [](const Json&) { return "network settings are reset\n"; },
                                  {"networkgrpc factory-reset --yes"}});
  tool.AddYes(reset);
}

}  // namespace tool
