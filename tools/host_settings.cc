// networkgrpc hostname, ntp, dns, gateway, factory-reset: the host's settings.
#include "tools/host_settings.h"

#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"
#include "tools/call.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kNetworkManager;

// The first string of a list. The library's function fails also if the list is
// empty, so that a failure is followed by a request for the list.
template <class Reply>
std::string FirstOrNone(const std::string& action, bool (*read)(std::string&),
                        grpc::Status (NetworkManagerClient::*list)(Reply*)) {
  std::string first;
  Do(kDaemon, action, [&] {
    Reply reply;
    return read(first) || (NetworkManagerClient::GetInstance().*list)(&reply).ok();
  });
  return first;
}

Json SetHostname(const std::string& name) {
  Do(kDaemon, "set the host name", [&] { return NetworkgRPC::SetHostname(name); });
  return {{"hostname", name}};
}

// The library does not return the name that it made, so that it is read back.
Json SetFromAmplifierName(const std::string& name) {
  Do(kDaemon, "set the host name", [&] { return setampname(name.c_str(), name.size()) == 0; });
  return {{"hostname", ReadHostname()}};
}

Json SetNtp(const std::string& server, bool reload) {
  Do(kDaemon, "set the NTP server", [&] { return NetworkgRPC::SetNTPServer(server, reload); });
  return {{"server", server}, {"reload", reload}};
}

Json Reset(Tool& tool) {
  tool.Confirm("the network settings will be reset to factory defaults", "Reset them?");
  Do(kDaemon, "reset the network settings", NetworkgRPC::FactoryReset);
  return {{"reset", true}};
}

// A command that shows one string.
Verb Shows(const char* description, const char* member, std::string (*read)(),
           const char* example) {
  return {description,
          [member, read] {
            return Json{{member, read()}};
          },
          ShowMember(member),
          {example}};
}

void AddHostname(Tool& tool) {
  CLI::App& noun = tool.AddNoun("hostname", "Show and set the host name", "get");
  tool.AddVerb(noun, "get",
               Shows("Show the host name", "hostname", ReadHostname, "networkgrpc hostname get"));
  const auto name = std::make_shared<std::string>();
  const auto show = [](const Json& result) {
    return "host name is set to '" + Text(result["hostname"]) + "'\n";
  };
  CLI::App& set = tool.AddVerb(noun, "set",
                               {"Set the host name, exactly as given",
                                [name] { return SetHostname(*name); },
                                show,
                                {"networkgrpc hostname set studio-amp"}});
  CLI::App& derive = tool.AddVerb(
      noun, "from-ampname",
      {"Set a host name made from the amplifier's name: its letters, in lower case, and digits",
       [name] { return SetFromAmplifierName(*name); },
       show,
       {"networkgrpc hostname from-ampname 'Studio Amp 2'"}});
  set.add_option("NAME", *name, "The host name")->required();
  derive.add_option("NAME", *name, "The amplifier's name")->required();
}

void AddNtp(Tool& tool) {
  CLI::App& noun = tool.AddNoun("ntp", "Show and set the NTP server", "get");
  tool.AddVerb(noun, "get",
               Shows("Show the first NTP server; an empty line if none", "server", ReadNtpServer,
                     "networkgrpc ntp get"));
  const auto server = std::make_shared<std::string>();
  const auto reload = std::make_shared<bool>(false);
  CLI::App& set =
      tool.AddVerb(noun, "set",
                   {"Store an NTP server, the only one",
                    [server, reload] { return SetNtp(*server, *reload); },
                    [](const Json& result) {
                      return "NTP server is set to '" + Text(result["server"]) +
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
  return FirstOrNone("read the NTP server", NetworkgRPC::GetNTPServer,
                     &NetworkManagerClient::GetNTPServer);
}

std::string ReadDns() {
  return FirstOrNone("read the DNS server", NetworkgRPC::GetCurrentDNS,
                     &NetworkManagerClient::GetDNSList);
}

std::string ReadGateway() {
  return Get<std::string>(kDaemon, "read the default gateway", NetworkgRPC::GetDefaultGateway);
}

void AddHostSettings(Tool& tool) {
  AddHostname(tool);
  AddNtp(tool);
  tool.AddVerb(tool.app, "dns",
               Shows("Show the first DNS server in use; an empty line if none", "dns", ReadDns,
                     "networkgrpc dns"));
  tool.AddVerb(tool.app, "gateway",
               Shows("Show the default gateway; an empty line if none", "gateway", ReadGateway,
                     "networkgrpc gateway"));
  CLI::App& reset = tool.AddVerb(tool.app, "factory-reset",
                                 {"Reset the network settings to factory defaults",
                                  [&tool] { return Reset(tool); },
                                  [](const Json&) { return "network settings are reset\n"; },
                                  {"networkgrpc factory-reset --yes"}});
  tool.AddYes(reset);
}

}  // namespace tool
