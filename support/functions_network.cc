// The network half of the tables: the functions of NetworkgRPC, the C functions, and the
// RPCs of the network-manager daemon.
#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/functions.h"
#include "support/rpcs.h"

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

std::vector<InterfaceInfo> Before() { return {Record(9, "before", "", "", true)}; }

std::vector<InterfaceInfo> After(const std::vector<InterfaceInfo>& added) {
  std::vector<InterfaceInfo> after = Before();
  after.insert(after.end(), added.begin(), added.end());
  return after;
}

Step ConfigStep(const std::vector<int>& ids, std::string line) {
  return ReadStep(NetworkManagerPath("GetNetworkConfig"), MakeIds(ids), StoredConfig(ids),
                  std::move(line));
}

Step StatusStep(const std::vector<int>& ids, std::string line) {
  return ReadStep(NetworkManagerPath("GetNetworkStatus"), MakeIds(ids), LiveStatus(ids),
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
  Function function = Reader<&NetworkgRPC::GetDanteInterfacesInfo>(
      name, Before(),
      After({Record(1, "10.2.0.10", "255.255.0.0", kLan0Mac, true),
             Record(0, "10.2.0.12", "255.255.0.0", kLan2Mac, true)}),
      {ReadStep(NetworkManagerPath("GetSwitchModeStatus"), Empty(), BothPorts(), ""),
       ConfigStep(ids, ConfigLine(name)), StatusStep(ids, StatusLine(name))});
  function.heap_copies = 3;  // the list and two MAC addresses
  return function;
}

Function ControlInterface() {
  const std::string name = "GetControlInterfacesInfo";
  Function function = Reader<&NetworkgRPC::GetControlInterfacesInfo>(
      name, Before(), After({Record(1, "10.1.0.11", "255.0.0.0", kLan1Mac, false)}),
      {ConfigStep({kLan1}, ConfigLine(name)), StatusStep({kLan1}, StatusLine(name))});
  function.heap_copies = 2;  // the list and the MAC address
  return function;
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
  config.continues = true;
  config.result = true;
  Step status = StatusStep(ids, "");
  status.result = true;
  Function function = Reader<&NetworkgRPC::GetAllIPv4>(
      "GetAllIPv4", Before(), After({lan2, lan0}),
      {ReadStep(NetworkManagerPath("GetAvailableInterfaces"), Empty(), TwoInterfaces(),
                std::string("libNetworkgRPC: GetAllIPv4") + kInformations),
       config, status});
  function.heap_copies = 5;  // the list, two MAC addresses, two indexes of ids
  return function;
}

bool MacOfLan0(std::string& mac) { return NetworkgRPC::GetMACAddress("lan0", mac); }

Function MacAddress() {
  return Reader<&MacOfLan0>(
      "GetMACAddress", "before", kLan0Mac,
      {ReadStep(NetworkManagerPath("GetAvailableInterfaces"), Empty(), TwoInterfaces(),
                std::string("libNetworkgRPC: GetMACAddress") + kInformations)});
}

bool LabelOfLan2(std::string& label) { return NetworkgRPC::GetTarvoInterfaceName(kLan2, label); }

// Made once, so that a plain call does not allocate an argument.
const InterfaceInfo& StaticAddress() {
  static const InterfaceInfo info = [] {
    InterfaceInfo made = Record(1, "10.0.0.5", "255.255.255.0", "ignored", true);
    made.name = "ignored";
    made.gateway = "10.0.0.1";
    made.dns = "10.0.0.2";
    made.id = 99;
    return made;
  }();
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

Function AddressSetter(const std::string& name, int id, const std::string& what, bool (*call)()) {
  Step set = ChangeStep(
      NetworkManagerPath("SetNetworkConfig"), StaticConfig(id),
      "libNetworkgRPC: ERROR: error while setting " + what + " network config in " + name + "\n");
  set.continues = true;
  Step reload =
      ChangeStep(NetworkManagerPath("ReloadNetworkConfig"), Empty(),
                 "libNetworkgRPC: ERROR: error while reloading network config in " + name + "\n");
  reload.result = true;
  return Changer(name, call, {set, reload});
}

Function SwitchModes() {
  ostrevan::networkmanager::SwitchModes modes;
  modes.add_modes()->set_name("zero, with one port");
  auto& second = *modes.add_modes();
  second.set_id(1);
  second.set_name("one");
  const std::vector<NetworkgRPC::SwitchMode> before = {{7, "before"}};
  Function function = Reader<&NetworkgRPC::GetSwitchModes>(
      "GetSwitchModes", before, {{7, "before"}, {0, "zero, with one port"}, {1, "one"}},
      {ReadStep(NetworkManagerPath("GetAvailableSwitchModes"), Empty(), modes,
                "libNetworkgRPC: ERROR: error while requesting available switch mode in "
                "GetSwitchModes\n")});
  function.heap_copies = 2;  // the list and one long name
  return WithNameOnlyExceptionLine(function);
}

template <bool (*call)(NetworkgRPC::SwitchMode&)>
Function SwitchModeReader(const std::string& name, const std::string& rpc) {
  Function function = Reader<call>(
      name, {7, "before"}, {1, "one, with both ports"},
      {ReadStep(
          NetworkManagerPath(rpc), Empty(), BothPorts(),
          "libNetworkgRPC: ERROR: error while requesting current switch mode in " + name + "\n")});
  function.heap_copies = 1;  // the name
  return WithNameOnlyExceptionLine(function);
}

Function CurrentSwitchMode() {
  return SwitchModeReader<&NetworkgRPC::GetCurrentSwitchMode>("GetCurrentSwitchMode",
                                                              "GetSwitchModeStatus");
}

Function SwitchModeSetter() {
  Id id;
  id.set_id(1);
  return Changer("SetSwitchMode", [] { return NetworkgRPC::SetSwitchMode(2); },
                 {ChangeStep(NetworkManagerPath("SetSwitchMode"), id,
                             "libNetworkgRPC: ERROR: error while setting dante switch mode in "
                             "SetSwitchMode\n")});
}

template <bool (*call)(std::string&)>
Function StringReader(const std::string& name, const std::string& rpc,
                      const google::protobuf::MessageLite& reply, const std::string& line) {
  return Reader<call>(
      name, "before", kAfter,
      {ReadStep(NetworkManagerPath(rpc), Empty(), reply, "libNetworkgRPC: " + name + line)});
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

  Step set_ntp =
      ChangeStep(NetworkManagerPath("SetNTPServer"), one_server,
                 "libNetworkgRPC: SetNTPServer: error while setting NTP server via gRPC\n");
  set_ntp.continues = true;
  Step reload_ntp =
      ChangeStep(NetworkManagerPath("ReloadNTPConfig"), Empty(),
                 "libNetworkgRPC: ERROR: error while reloading NTP config in SetNTPServer\n");
  reload_ntp.result = true;

  return {
      StringReader<&NetworkgRPC::GetHostname>("GetHostname", "GetHostname", hostname,
                                              kInformations),
      Changer("SetHostname",
              [] {
                static const std::string name = kAfter;  // made once: see StaticAddress()
                return NetworkgRPC::SetHostname(name);
              },
              {ChangeStep(NetworkManagerPath("SetHostname"), hostname,
                          std::string("libNetworkgRPC: SetHostname") + kInformations)}),
      StringReader<&NetworkgRPC::GetNTPServer>("GetNTPServer", "GetNTPServer", servers,
                                               ": error while reading NTP server via gRPC\n"),
      Changer("SetNTPServer", [] { return NetworkgRPC::SetNTPServer("ntp.example", true); },
              {set_ntp, reload_ntp}),
      StringReader<&NetworkgRPC::GetCurrentDNS>("GetCurrentDNS", "GetDNSList", dns,
                                                ": error while reading DNS list via gRPC\n"),
      StringReader<&NetworkgRPC::GetDefaultGateway>("GetDefaultGateway", "GetRouting", routing,
                                                    kInformations),
      Changer("FactoryReset", &NetworkgRPC::FactoryReset,
              {ChangeStep(NetworkManagerPath("FactoryReset"), Empty(),
                          std::string("libNetworkgRPC: FactoryReset") + kInformations)}),
  };
}

bool ControlInterfaceInC(cInterfaceInfo& entry) { return cGetControlInterface(&entry, 1) == 1; }
bool CurrentSwitchModeInC(int& id) { return cGetCurrentSwitchMode(&id) == 0; }

// A C function that calls a function of NetworkgRPC, whose lines it prints.
template <auto call>
Function CReader(const std::string& name, Function called, OutputOf<call> before,
                 const OutputOf<call>& after) {
  for (Step& step : called.steps) step.outputs.clear();
  Function function = Reader<call>(name, before, after, called.steps);
  function.exception_line = called.exception_line;
  function.heap_copies = called.heap_copies;
  return function;
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
  const std::string set_hostname = "libNetworkgRPC: SetHostname";
  Function ampname = Changer(
      "setampname", [] { return setampname("Amp1", 4) == 0; },
      {ChangeStep(NetworkManagerPath("SetHostname"), filtered, set_hostname + kInformations)});
  ampname.printed = "libNetworkgRPC: setting hostname: amp1 4\n";
  ampname.exception_line = "libNetworkgRPC: C++ exception in SetHostname(): std::bad_alloc\n";

  return {
      CReader<&ControlInterfaceInC>("cGetControlInterface", ControlInterface(), before, after),
      CReader<&CurrentSwitchModeInC>("cGetCurrentSwitchMode", CurrentSwitchMode(), 7, 1),
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
      Reader<&LabelOfLan2>("GetTarvoInterfaceName", "before", "dante-1", {}),
      AddressSetter("SetDanteIP", kLan2, "dante",
                    [] { return NetworkgRPC::SetDanteIP(StaticAddress(), 1, true); }),
      AddressSetter("SetControlIP", kLan1, "control",
                    [] { return NetworkgRPC::SetControlIP(StaticAddress(), true); }),
      AddressSetter("SetGenericIP", 7, "interface 7",
                    [] { return NetworkgRPC::SetGenericIP(7, StaticAddress(), true); }),
      SwitchModes(),
      SwitchModeReader<&NetworkgRPC::GetConfiguredSwitchMode>("GetConfiguredSwitchMode",
                                                              "GetSwitchMode"),
      CurrentSwitchMode(),
      SwitchModeSetter(),
  };
  for (Function& function : HostSettings()) all.push_back(std::move(function));
  for (Function& function : CFunctions()) all.push_back(std::move(function));
  return all;
}

std::vector<Rpc> NetworkManagerRpcs() {
  using Stub = ostrevan::networkmanager::NetworkManager::Stub;
  using Client = NetworkManagerClient;
  const auto make = [](const char* method, auto... methods) {
    return MakeRpc(NetworkManagerPath(method), &DaemonStubs::network, methods...);
  };
  return {
      make("GetAvailableInterfaces", &Stub::GetAvailableInterfaces,
           &Client::GetAvailableInterfaces),
      make("GetNetworkConfig", &Stub::GetNetworkConfig, &Client::GetNetworkConfig),
      make("SetNetworkConfig", &Stub::SetNetworkConfig, &Client::SetNetworkConfig),
      make("GetNetworkStatus", &Stub::GetNetworkStatus, &Client::GetNetworkStatus),
      make("GetAvailableSwitchModes", &Stub::GetAvailableSwitchModes,
           &Client::GetAvailableSwitchModes),
      // The names of these two differ between stub and client.
      make("GetSwitchMode", &Stub::GetSwitchMode, &Client::GetConfiguredSwitchMode),
      make("GetSwitchModeStatus", &Stub::GetSwitchModeStatus, &Client::GetCurrentSwitchMode),
      make("SetSwitchMode", &Stub::SetSwitchMode, &Client::SetSwitchMode),
      make("GetHostname", &Stub::GetHostname, &Client::GetHostname),
      make("SetHostname", &Stub::SetHostname, &Client::SetHostname),
      make("GetNTPServer", &Stub::GetNTPServer, &Client::GetNTPServer),
      make("SetNTPServer", &Stub::SetNTPServer, &Client::SetNTPServer),
      make("ReloadNetworkConfig", &Stub::ReloadNetworkConfig, &Client::ReloadNetworkConfig),
      make("GetRouting", &Stub::GetRouting, &Client::GetRouting),
      make("GetDNSList", &Stub::GetDNSList, &Client::GetDNSList),
      make("ReloadNTPConfig", &Stub::ReloadNTPConfig, &Client::ReloadNTPConfig),
      make("FactoryReset", &Stub::FactoryReset, &Client::FactoryReset),
      make("GetRoutingForInterface", &Stub::GetRoutingForInterface),
  };
}

}  // namespace support
