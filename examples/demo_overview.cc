#include "examples/demo_overview.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "NetworkgRPC.h"
#include "examples/step.h"
#include "examples/table.h"

namespace demo {
namespace {

using Interfaces = std::vector<NetworkgRPC::InterfaceInfo>;

const char* YesOrNo(bool yes) { return yes ? "yes" : "no"; }
const char* OnOrOff(bool on) { return on ? "on" : "off"; }
std::string OrDash(const std::string& text) { return text.empty() ? "-" : text; }

// The library's value, or the failure of the step that wanted it.
template <class Value>
Value Get(bool (*read)(Value&), const std::string& step) {
  Value value{};
  Require(read(value), step);
  return value;
}

// The MAC addresses of the interfaces that have a role at present. Only a part
// of the roles may be there, which is no failure.
std::set<std::string> MacsWithRole() {
  Interfaces found;
  NetworkgRPC::GetDanteInterfacesInfo(found);
  NetworkgRPC::GetControlInterfacesInfo(found);
  std::set<std::string> macs;
  for (const auto& interface : found)
    if (!interface.mac.empty()) macs.insert(interface.mac);
  return macs;
}

void PrintInterfaces(std::ostream& out) {
  const Interfaces interfaces = Get(&NetworkgRPC::GetAllIPv4, "read the interfaces");
  const std::set<std::string> with_role = MacsWithRole();
  Table table({"Id", "Name", "Role", "Mode", "Address", "Netmask", "In use", "MAC"});
  for (const auto& interface : interfaces) {
    std::string role;
    // Asked only where there is one: the library reports the others as faults.
    if (with_role.count(interface.mac) != 0) NetworkgRPC::GetTarvoInterfaceName(interface.id, role);
    table.Add({std::to_string(interface.id), interface.name, OrDash(role),
               interface.mode == 1 ? "static" : "dynamic", OrDash(interface.ip),
               OrDash(interface.netmask), YesOrNo(interface.active), interface.mac});
  }
  out << "Interfaces\n" << table << '\n';
}

void PrintSwitchModes(std::ostream& out) {
  using Mode = NetworkgRPC::SwitchMode;
  const auto modes = Get(&NetworkgRPC::GetSwitchModes, "read the switch modes");
  const Mode configured =
      Get(&NetworkgRPC::GetConfiguredSwitchMode, "read the configured switch mode");
  const Mode current = Get(&NetworkgRPC::GetCurrentSwitchMode, "read the switch mode in effect");
  Table table({"Id", "Name", "Configured", "In effect"});
  for (const Mode& mode : modes)
    table.Add({std::to_string(mode.id), mode.name, YesOrNo(mode.id == configured.id),
               YesOrNo(mode.id == current.id)});
  out << "Switch modes\n" << table << '\n';
}

void PrintHost(std::ostream& out) {
  std::string ntp;
  std::string dns;
  // False means that there is none, too.
  NetworkgRPC::GetNTPServer(ntp);
  NetworkgRPC::GetCurrentDNS(dns);
  Table table;
  table.Add({"Host name", OrDash(Get(&NetworkgRPC::GetHostname, "read the host name"))});
  table.Add({"NTP server", OrDash(ntp)});
  table.Add({"DNS server", OrDash(dns)});
  table.Add({"Default gateway",
             OrDash(Get(&NetworkgRPC::GetDefaultGateway, "read the default gateway"))});
  out << "Host\n" << table << '\n';
}

std::string SampleRates() {
  const int current = Get(&DantegRPC::GetSampleRate, "read the sample rate");
  const auto rates = Get(&DantegRPC::GetAvailableSampleRates, "read the available sample rates");
  std::string text = std::to_string(current) + " of";
  for (const int rate : rates) text += ' ' + std::to_string(rate);
  return text;
}

void PrintDante(std::ostream& out) {
  const bool aes67 = Get(&DantegRPC::GetAES67Available, "read whether AES67 is available");
  Table table;
  table.Add({"Device name", OrDash(Get(&DantegRPC::GetName, "read the device name"))});
  table.Add({"Model", Get(&DantegRPC::GetModelName, "read the model's name") + ' ' +
                          Get(&DantegRPC::GetModelVersion, "read the model's version")});
  table.Add({"Firmware", Get(&DantegRPC::GetFirmwareVersion, "read the firmware's version")});
  table.Add({"Software", Get(&DantegRPC::GetSoftwareVersion, "read the software's version")});
  table.Add({"Sample rate", SampleRates()});
  table.Add({"Latency", std::to_string(Get(&DantegRPC::GetLatency, "read the latency"))});
  table.Add({"AES67", aes67 ? OnOrOff(Get(&DantegRPC::GetAES67Status, "read the AES67 status"))
                            : "not available"});
  const bool disabled = Get(&DantegRPC::GetDisableTx, "read whether transmission is disabled");
  table.Add({"Transmission", OnOrOff(!disabled)});
  table.Add({"PTP slave only",
             YesOrNo(Get(&DantegRPC::GetPtpSlaveOnly, "read whether PTP is slave only"))});
  out << "Dante\n" << table << '\n';
}

void PrintChannels(std::ostream& out) {
  const auto sending = Get(&DantegRPC::GetTxChannels, "read the transmit channels");
  const auto receiving = Get(&DantegRPC::GetRxChannels, "read the receive channels");
  const auto links = Get(&DantegRPC::GetTapping, "read the routing");

  Table transmit({"Id", "Name"});
  for (const auto& channel : sending) transmit.Add({std::to_string(channel.id), channel.name});
  out << "Transmit channels: " << sending.size() << '\n' << transmit << '\n';

  Table receive({"Id", "Name", "Takes its audio from"});
  for (const auto& channel : receiving) {
    const auto link = std::find_if(links.begin(), links.end(), [&](const auto& candidate) {
      return candidate.rxChannelId == channel.id;
    });
    receive.Add({std::to_string(channel.id), channel.name,
                 link != links.end() ? Source(*link) : "unknown"});
  }
  out << "Receive channels: " << receiving.size() << '\n' << receive << '\n';
}

}  // namespace

std::string Source(const DantegRPC::ChannelLink& link) {
  if (link.isRaw) return "stream " + link.ip;
  if (link.channelName.empty() && link.deviceName.empty()) return "-";
  return link.channelName + " @ " + link.deviceName;
}

void PrintOverview(std::ostream& out) {
  PrintInterfaces(out);
  PrintSwitchModes(out);
  PrintHost(out);
  PrintDante(out);
  PrintChannels(out);
}

}  // namespace demo
