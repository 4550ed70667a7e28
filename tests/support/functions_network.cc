// The network half of the table.
#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"
#include "ostrevan/networkmanager.pb.h"
#include "tests/support/functions.h"

namespace support {
namespace {

using InterfaceInfo = NetworkgRPC::InterfaceInfo;
using ostrevan::common::Empty;
using ostrevan::networkmanager::DNS;
using ostrevan::networkmanager::Hostname;
using ostrevan::networkmanager::Id;
using ostrevan::networkmanager::Ids;
using ostrevan::networkmanager::InterfaceConfig;
using ostrevan::networkmanager::Interfaces;
using ostrevan::networkmanager::InterfacesConfig;
using ostrevan::networkmanager::InterfacesStatus;
using ostrevan::networkmanager::NTPServer;
using ostrevan::networkmanager::Routing;

constexpr const char* kInformations = ": error while requesting informations via gRPC\n";

Ids MakeIds(const std::vector<int>& numbers) {
  Ids ids;
  for (const int number : numbers) ids.add_ids(number);
  return ids;
}

// lan0 is static and live, lan1 static but down, lan2 dynamic and live.
InterfacesConfig StoredConfig(const std::vector<int>& numbers) {
  InterfacesConfig config;
  for (const int number : numbers) {
    auto& stored = *config.add_configs();
    stored.set_id(number);
    stored.set_mode(number == kLan2 ? ostrevan::networkmanager::DHCP_ONLY
                                    : ostrevan::networkmanager::STATIC);
    stored.set_ip("10.1.0." + std::to_string(number));
    stored.set_netmask("255.0.0.0");
  }
  return config;
}

InterfacesStatus LiveStatus(const std::vector<int>& numbers) {
  InterfacesStatus status;
  for (const int number : numbers) {
    auto& live = *status.add_status();
    live.set_id(number);
    live.set_ip("10.2.0." + std::to_string(number));
    live.set_netmask("255.255.0.0");
    live.set_flag4(number != kLan1);
  }
  return status;
}

InterfaceInfo Record(int mode, const char* ip, const char* netmask, const char* mac, bool active) {
  InterfaceInfo record;
  record.mode = mode;
  record.ip = ip;
  record.netmask = netmask;
  record.mac = mac;
  record.active = active;
  return record;
}

const std::vector<InterfaceInfo> kBefore = {Record(9, "before", "", "", true)};

std::vector<InterfaceInfo> After(const std::vector<InterfaceInfo>& added) {
  std::vector<InterfaceInfo> after = kBefore;
  after.insert(after.end(), added.begin(), added.end());
  return after;
}

Step ConfigStep(const std::vector<int>& ids, std::string line) {
  return Ask(NetworkManagerPath("GetNetworkConfig"), MakeIds(ids), StoredConfig(ids),
             std::move(line));
}

Step StatusStep(const std::vector<int>& ids, std::string line) {
  return Ask(NetworkManagerPath("GetNetworkStatus"), MakeIds(ids), LiveStatus(ids),
             std::move(line));
}

std::string ConfigLine(const std::string& name) {
  return "libNetworkgRPC: ERROR: error while requesting network config in " + name + "\n";
}

std::string StatusLine(const std::string& name) {
  return "libNetworkgRPC: ERROR: error while requesting network status in " + name + "\n";
}

// The mode in which both Dante interfaces are in use.
ostrevan::networkmanager::SwitchMode BothPorts() {
  ostrevan::networkmanager::SwitchMode mode;
  mode.set_id(1);
  mode.set_name("one, with both ports");
  return mode;
}

Function DanteInterfaces() {
  const std::string name = "GetDanteInterfacesInfo";
  const std::vector<int> ids = {kLan0, kLan2};
  return Reader(name, &NetworkgRPC::GetDanteInterfacesInfo, kBefore,
                After({Record(1, "10.2.0.10", "255.255.0.0", kLan0Mac, true),
                       Record(0, "10.2.0.12", "255.255.0.0", kLan2Mac, true)}),
                {Ask(NetworkManagerPath("GetSwitchModeStatus"), Empty(), BothPorts(), ""),
                 ConfigStep(ids, ConfigLine(name)), StatusStep(ids, StatusLine(name))});
}

Function ControlInterface() {
  const std::string name = "GetControlInterfacesInfo";
  return Reader(name, &NetworkgRPC::GetControlInterfacesInfo, kBefore,
                After({Record(1, "10.1.0.11", "255.0.0.0", kLan1Mac, false)}),
                {ConfigStep({kLan1}, ConfigLine(name)), StatusStep({kLan1}, StatusLine(name))});
}

Interfaces TwoInterfaces() {
  Interfaces interfaces;
  for (const int id : {kLan2, kLan0}) {
    auto& added = *interfaces.add_interfaces();
    added.set_id(id);
    added.set_name(id == kLan2 ? "lan2" : "lan0");
    added.set_mac(id == kLan2 ? kLan2Mac : kLan0Mac);
  }
  return interfaces;
}

Function AllInterfaces() {
  InterfaceInfo lan2 = Record(0, "10.2.0.12", "255.255.0.0", kLan2Mac, true);
  lan2.name = "lan2";
  lan2.id = kLan2;
  InterfaceInfo lan0 = Record(1, "10.2.0.10", "255.255.0.0", kLan0Mac, true);
  lan0.name = "lan0";
  lan0.id = kLan0;
  const std::vector<int> ids = {kLan2, kLan0};
  Step config = ConfigStep(ids, "");
  config.goes_on = true;
  config.result = true;
  Step status = StatusStep(ids, "");
  status.result = true;
  return Reader("GetAllIPv4", &NetworkgRPC::GetAllIPv4, kBefore, After({lan2, lan0}),
                {Ask(NetworkManagerPath("GetAvailableInterfaces"), Empty(), TwoInterfaces(),
                     std::string("libNetworkgRPC: GetAllIPv4") + kInformations),
                 config, status});
}

Function MacAddress() {
  Function function = Reader<std::string>(
      "GetMACAddress", [](std::string& mac) { return NetworkgRPC::GetMACAddress("lan0", mac); },
      "before", kLan0Mac,
      {Ask(NetworkManagerPath("GetAvailableInterfaces"), Empty(), TwoInterfaces(),
           std::string("libNetworkgRPC: GetMACAddress") + kInformations)});
  return function;
}

Function TarvoName() {
  return Reader<std::string>(
      "GetTarvoInterfaceName",
      [](std::string& label) { return NetworkgRPC::GetTarvoInterfaceName(kLan2, label); }, "before",
      "dante-1", {});
}

InterfaceInfo StaticAddress() {
  InterfaceInfo info = Record(1, "10.0.0.5", "255.255.255.0", "ignored", true);
  info.name = "ignored";
  info.gateway = "10.0.0.1";
  info.dns = "10.0.0.2";
  info.id = 99;
  return info;
}

InterfaceConfig StaticConfig(int id) {
  InterfaceConfig config;
  config.set_id(id);
  config.set_mode(ostrevan::networkmanager::STATIC);
  config.set_ip("10.0.0.5");
  config.set_netmask("255.255.255.0");
  config.set_gateway("10.0.0.1");
  config.add_dns("10.0.0.2");
  return config;
}

Function AddressSetter(const std::string& name, int id, const std::string& what,
                       std::function<bool()> call) {
  Step set = Confirm(
      NetworkManagerPath("SetNetworkConfig"), StaticConfig(id),
      "libNetworkgRPC: ERROR: error while setting " + what + " network config in " + name + "\n");
  set.goes_on = true;
  Step reload =
      Confirm(NetworkManagerPath("ReloadNetworkConfig"), Empty(),
              "libNetworkgRPC: ERROR: error while reloading network config in " + name + "\n");
  reload.result = true;
  return Changer(name, std::move(call), {set, reload});
}

Function SwitchModes() {
  ostrevan::networkmanager::SwitchModes modes;
  modes.add_modes()->set_name("zero, with one port");
  auto& second = *modes.add_modes();
  second.set_id(1);
  second.set_name("one");
  const std::vector<NetworkgRPC::SwitchMode> before = {{7, "before"}};
  return Reader("GetSwitchModes", &NetworkgRPC::GetSwitchModes, before,
                {{7, "before"}, {0, "zero, with one port"}, {1, "one"}},
                {Ask(NetworkManagerPath("GetAvailableSwitchModes"), Empty(), modes,
                     "libNetworkgRPC: ERROR: error while requesting available switch mode in "
                     "GetSwitchModes\n")});
}

Function SwitchModeReader(const std::string& name, bool (*call)(NetworkgRPC::SwitchMode&),
                          const std::string& rpc) {
  return Reader<NetworkgRPC::SwitchMode>(
      name, call, {7, "before"}, {1, "one, with both ports"},
      {Ask(NetworkManagerPath(rpc), Empty(), BothPorts(),
           "libNetworkgRPC: ERROR: error while requesting current switch mode in " + name + "\n")});
}

Function SwitchModeSetter() {
  Id id;
  id.set_id(1);
  return Changer("SetSwitchMode", [] { return NetworkgRPC::SetSwitchMode(2); },
                 {Confirm(NetworkManagerPath("SetSwitchMode"), id,
                          "libNetworkgRPC: ERROR: error while setting dante switch mode in "
                          "SetSwitchMode\n")});
}

template <class Message>
Function TextReader(const std::string& name, bool (*call)(std::string&), const std::string& rpc,
                    const Message& reply, const std::string& line) {
  return Reader<std::string>(
      name, call, "before", kAfter,
      {Ask(NetworkManagerPath(rpc), Empty(), reply, "libNetworkgRPC: " + name + line)});
}

std::vector<Function> HostSettings() {
  Hostname hostname;
  hostname.set_hostname(kAfter);
  NTPServer servers;
  servers.add_servers(kAfter);
  servers.add_servers("not the first");
  NTPServer one_server;
  one_server.add_servers("ntp.example");
  DNS dns;
  dns.add_dns(kAfter);
  dns.add_dns("not the first");
  Routing routing;
  routing.set_gateway(kAfter);

  Step set_ntp = Confirm(NetworkManagerPath("SetNTPServer"), one_server,
                         "libNetworkgRPC: SetNTPServer: error while setting NTP server via gRPC\n");
  set_ntp.goes_on = true;
  Step reload_ntp =
      Confirm(NetworkManagerPath("ReloadNTPConfig"), Empty(),
              "libNetworkgRPC: ERROR: error while reloading NTP config in SetNTPServer\n");
  reload_ntp.result = true;

  return {
      TextReader("GetHostname", &NetworkgRPC::GetHostname, "GetHostname", hostname, kInformations),
      Changer("SetHostname", [] { return NetworkgRPC::SetHostname(kAfter); },
              {Confirm(NetworkManagerPath("SetHostname"), hostname,
                       std::string("libNetworkgRPC: SetHostname") + kInformations)}),
      TextReader("GetNTPServer", &NetworkgRPC::GetNTPServer, "GetNTPServer", servers,
                 ": error while reading NTP server via gRPC\n"),
      Changer("SetNTPServer", [] { return NetworkgRPC::SetNTPServer("ntp.example", true); },
              {set_ntp, reload_ntp}),
      TextReader("GetCurrentDNS", &NetworkgRPC::GetCurrentDNS, "GetDNSList", dns,
                 ": error while reading DNS list via gRPC\n"),
      TextReader("GetDefaultGateway", &NetworkgRPC::GetDefaultGateway, "GetRouting", routing,
                 kInformations),
      Changer("FactoryReset", [] { return NetworkgRPC::FactoryReset(); },
              {Confirm(NetworkManagerPath("FactoryReset"), Empty(),
                       std::string("libNetworkgRPC: FactoryReset") + kInformations)}),
  };
}

std::vector<Function> CFunctions() {
  cInterfaceInfo before{};
  before.ip[0] = 'b';
  cInterfaceInfo after{};
  std::string("10.1.0.11").copy(after.ip, sizeof after.ip);
  std::string("255.0.0.0").copy(after.netmask, sizeof after.netmask);
  std::string(kLan1Mac).copy(after.mac, sizeof after.mac);

  Hostname filtered;
  filtered.set_hostname("amp1");
  Function ampname = Changer("setampname", [] { return setampname("Amp-1", 5) == 0; },
                             {Confirm(NetworkManagerPath("SetHostname"), filtered,
                                      std::string("libNetworkgRPC: SetHostname") + kInformations)});
  ampname.printed =
      "libNetworkgRPC: discard charapter: - 3 3\n"
      "libNetworkgRPC: setting hostname: amp1 4\n";

  Function control = ControlInterface();
  Function mode = SwitchModeReader("GetCurrentSwitchMode", &NetworkgRPC::GetCurrentSwitchMode,
                                   "GetSwitchModeStatus");
  for (Function* from : {&control, &mode})
    for (Step& step : from->steps) step.outputs.clear();
  return {
      Reader<cInterfaceInfo>(
          "cGetControlInterface",
          [](cInterfaceInfo& entry) { return cGetControlInterface(&entry, 1) == 1; }, before, after,
          control.steps),
      Reader<int>(
          "cGetCurrentSwitchMode", [](int& id) { return cGetCurrentSwitchMode(&id) == 0; }, 7, 1,
          mode.steps),
      ampname,
  };
}

}  // namespace

std::vector<Function> NetworkFunctions() {
  std::vector<Function> all = {
      DanteInterfaces(),
      ControlInterface(),
      AllInterfaces(),
      MacAddress(),
      TarvoName(),
      AddressSetter("SetDanteIP", kLan2, "dante",
                    [] { return NetworkgRPC::SetDanteIP(StaticAddress(), 1, true); }),
      AddressSetter("SetControlIP", kLan1, "control",
                    [] { return NetworkgRPC::SetControlIP(StaticAddress(), true); }),
      AddressSetter("SetGenericIP", 7, "interface 7",
                    [] { return NetworkgRPC::SetGenericIP(7, StaticAddress(), true); }),
      SwitchModes(),
      SwitchModeReader("GetConfiguredSwitchMode", &NetworkgRPC::GetConfiguredSwitchMode,
                       "GetSwitchMode"),
      SwitchModeReader("GetCurrentSwitchMode", &NetworkgRPC::GetCurrentSwitchMode,
                       "GetSwitchModeStatus"),
      SwitchModeSetter(),
  };
  for (Function& function : HostSettings()) all.push_back(std::move(function));
  for (Function& function : CFunctions()) all.push_back(std::move(function));
  return all;
}

}  // namespace support
