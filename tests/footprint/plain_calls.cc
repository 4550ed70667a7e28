#include "tests/footprint/plain_calls.h"

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"
#include "tests/support/device.h"

namespace footprint {
namespace {

template <class Output>
using Getter = bool (*)(Output&);

// Calls a function whose one output starts out empty.
template <class Output, Getter<Output> getter>
bool Get() {
  Output output{};
  return getter(output);
}

template <Getter<std::string> getter>
constexpr auto Text = &Get<std::string, getter>;
template <Getter<int> getter>
constexpr auto Number = &Get<int, getter>;
template <Getter<bool> getter>
constexpr auto Flag = &Get<bool, getter>;
template <class Record, Getter<std::vector<Record>> getter>
constexpr auto List = &Get<std::vector<Record>, getter>;

const NetworkgRPC::InterfaceInfo& Address() {
  static const NetworkgRPC::InterfaceInfo info = [] {
    NetworkgRPC::InterfaceInfo made;
    made.mode = 1;
    made.ip = "10.0.0.5";
    made.netmask = "255.255.255.0";
    made.gateway = "10.0.0.1";
    made.dns = "10.0.0.2";
    return made;
  }();
  return info;
}

const DantegRPC::ChannelLink& Link() {
  static const DantegRPC::ChannelLink link = [] {
    DantegRPC::ChannelLink made;
    made.rxChannelId = 4;
    made.channelName = "microphone 1, lead singer";
    made.deviceName = "stage box, left wing";
    return made;
  }();
  return link;
}

// A text argument that exists before the call.
const std::string& Argument(const char* text) {
  thread_local std::string argument;
  return argument = text;
}

std::vector<PlainCall> Network() {
  using N = NetworkgRPC;
  return {
      {"GetDanteInterfacesInfo", List<N::InterfaceInfo, &N::GetDanteInterfacesInfo>},
      {"GetControlInterfacesInfo", List<N::InterfaceInfo, &N::GetControlInterfacesInfo>},
      {"GetAllIPv4", List<N::InterfaceInfo, &N::GetAllIPv4>},
      {"GetMACAddress",
       [] {
         std::string mac;
         return N::GetMACAddress(Argument("lan0"), mac);
       }},
      {"GetTarvoInterfaceName",
       [] {
         std::string label;
         return N::GetTarvoInterfaceName(support::kLan2, label);
       }},
      {"SetDanteIP", [] { return N::SetDanteIP(Address(), 1, true); }},
      {"SetControlIP", [] { return N::SetControlIP(Address(), true); }},
      {"SetGenericIP", [] { return N::SetGenericIP(7, Address(), true); }},
      {"GetSwitchModes", List<N::SwitchMode, &N::GetSwitchModes>},
      {"GetConfiguredSwitchMode", &Get<N::SwitchMode, &N::GetConfiguredSwitchMode>},
      {"GetCurrentSwitchMode", &Get<N::SwitchMode, &N::GetCurrentSwitchMode>},
      {"SetSwitchMode", [] { return N::SetSwitchMode(2); }},
      {"GetHostname", Text<&N::GetHostname>},
      {"SetHostname",
       [] { return N::SetHostname(Argument("after, and longer than a small string")); }},
      {"GetNTPServer", Text<&N::GetNTPServer>},
      {"SetNTPServer", [] { return N::SetNTPServer(Argument("ntp.example"), true); }},
      {"GetCurrentDNS", Text<&N::GetCurrentDNS>},
      {"GetDefaultGateway", Text<&N::GetDefaultGateway>},
      {"FactoryReset", &N::FactoryReset},
      {"cGetControlInterface",
       [] {
         cInterfaceInfo entry;
         return cGetControlInterface(&entry, 1) == 1;
       }},
      {"cGetCurrentSwitchMode",
       [] {
         int mode = 0;
         return cGetCurrentSwitchMode(&mode) == 0;
       }},
      {"setampname", [] { return setampname("Amp1", 4) == 0; }},
  };
}

std::vector<PlainCall> Dante() {
  using D = DantegRPC;
  return {
      {"GetName", Text<&D::GetName>},
      {"SetName", [] { return D::SetName(Argument("new")); }},
      {"GetFirmwareVersion", Text<&D::GetFirmwareVersion>},
      {"GetSoftwareVersion", Text<&D::GetSoftwareVersion>},
      {"GetModelName", Text<&D::GetModelName>},
      {"GetModelVersion", Text<&D::GetModelVersion>},
      {"GetAvailableSampleRates", List<int, &D::GetAvailableSampleRates>},
      {"GetSampleRate", Number<&D::GetSampleRate>},
      {"SetSampleRate", [] { return D::SetSampleRate(48000); }},
      {"GetLatency", Number<&D::GetLatency>},
      {"SetLatency", [] { return D::SetLatency(48000); }},
      {"GetAES67Available", Flag<&D::GetAES67Available>},
      {"GetAES67Status", Flag<&D::GetAES67Status>},
      {"SetAES67", [] { return D::SetAES67(true); }},
      {"GetDisableTx", Flag<&D::GetDisableTx>},
      {"SetDisableTx", [] { return D::SetDisableTx(true); }},
      {"GetPtpSlaveOnly", Flag<&D::GetPtpSlaveOnly>},
      {"SetPtpSlaveOnly", [] { return D::SetPtpSlaveOnly(true); }},
      {"Reboot", &D::Reboot},
      {"GetTxChannels", List<D::Channel, &D::GetTxChannels>},
      {"GetRxChannels", List<D::Channel, &D::GetRxChannels>},
      {"GetChannelsNum",
       [] {
         int tx = 0;
         int rx = 0;
         return D::GetChannelsNum(tx, rx);
       }},
      {"SetTxChannelName",
       [] {
         static const D::Channel channel{3, "new"};
         return D::SetTxChannelName(channel);
       }},
      {"GetTapping", List<D::ChannelLink, &D::GetTapping>},
      {"SetTapping", [] { return D::SetTapping(Link()); }},
  };
}

}  // namespace

const std::vector<PlainCall>& PlainCalls() {
  static const std::vector<PlainCall> all = [] {
    std::vector<PlainCall> made = Network();
    for (const PlainCall& call : Dante()) made.push_back(call);
    return made;
  }();
  return all;
}

}  // namespace footprint
