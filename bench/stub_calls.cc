#include "bench/stub_calls.h"

#include <cstdio>
#include <map>
#include <stdexcept>

#include "client/channel.h"
#include "ostrevan/grpcdapi.grpc.pb.h"
#include "ostrevan/networkmanager.grpc.pb.h"

namespace bench {
namespace {

using DapiStub = ostrevan::grpcdapi::DAPI::Stub;
using NetworkStub = ostrevan::networkmanager::NetworkManager::Stub;

DapiStub& Dapi() {
  static const auto stub = ostrevan::grpcdapi::DAPI::NewStub(client::MakeChannel(client::kDapiUrl));
  return *stub;
}

NetworkStub& NetworkManager() {
  static const auto stub = ostrevan::networkmanager::NetworkManager::NewStub(
      client::MakeChannel(client::kNetworkManagerUrl));
  return *stub;
}

template <class Stub, class Request, class Reply>
using Method = grpc::Status (Stub::*)(grpc::ClientContext*, const Request&, Reply*);

template <class Stub, class Request, class Reply>
bool Call(Stub& stub, Method<Stub, Request, Reply> method, const Request& request, Reply& reply) {
  grpc::ClientContext context;
  return (stub.*method)(&context, request, &reply).ok();
}

// Makes a call out of a request's bytes.
using Maker = std::function<Attempt(const std::string& bytes)>;

template <class Stub, class Request, class Reply>
Maker MakerOf(Stub& (*stub)(), Method<Stub, Request, Reply> method) {
  return [stub, method](const std::string& bytes) -> Attempt {
    Request request;
    if (!request.ParseFromString(bytes)) throw std::runtime_error("the table has a bad request");
    return [stub, method, request] {
      Reply reply;
      return Call(stub(), method, request, reply);
    };
  };
}

using Makers = std::map<std::string, Maker>;

template <class Request, class Reply>
Makers::value_type Dapi(const char* name, Method<DapiStub, Request, Reply> method) {
  return {support::DapiPath(name), MakerOf(&Dapi, method)};
}

template <class Request, class Reply>
Makers::value_type Network(const char* name, Method<NetworkStub, Request, Reply> method) {
  return {support::NetworkManagerPath(name), MakerOf(&NetworkManager, method)};
}

const Makers& AllMakers() {
  using D = DapiStub;
  using N = NetworkStub;
  static const Makers makers = {
      Dapi("GetName", &D::GetName),
      Dapi("SetName", &D::SetName),
      Dapi("GetTxChannels", &D::GetTxChannels),
      Dapi("GetRxChannels", &D::GetRxChannels),
      Dapi("SetTxChannelName", &D::SetTxChannelName),
      Dapi("SetRxChannelLink", &D::SetRxChannelLink),
      Dapi("GetLatency", &D::GetLatency),
      Dapi("SetLatency", &D::SetLatency),
      Dapi("GetSoftwareVersion", &D::GetSoftwareVersion),
      Dapi("GetFirmwareVersion", &D::GetFirmwareVersion),
      Dapi("GetAvailableSampleRates", &D::GetAvailableSampleRates),
      Dapi("GetSampleRate", &D::GetSampleRate),
      Dapi("SetSampleRate", &D::SetSampleRate),
      Dapi("GetIsAES67Available", &D::GetIsAES67Available),
      Dapi("GetAES67Status", &D::GetAES67Status),
      Dapi("SetAES67Status", &D::SetAES67Status),
      Dapi("GetModelName", &D::GetModelName),
      Dapi("GetModelVersion", &D::GetModelVersion),
      Dapi("GetDisableTxStatus", &D::GetDisableTxStatus),
      Dapi("SetDisableTxStatus", &D::SetDisableTxStatus),
      Dapi("GetPtpSlaveOnlyStatus", &D::GetPtpSlaveOnlyStatus),
      Dapi("SetPtpSlaveOnlyStatus", &D::SetPtpSlaveOnlyStatus),
      Network("GetAvailableInterfaces", &N::GetAvailableInterfaces),
      Network("GetNetworkConfig", &N::GetNetworkConfig),
      Network("SetNetworkConfig", &N::SetNetworkConfig),
      Network("GetNetworkStatus", &N::GetNetworkStatus),
      Network("GetAvailableSwitchModes", &N::GetAvailableSwitchModes),
      Network("GetSwitchMode", &N::GetSwitchMode),
      Network("GetSwitchModeStatus", &N::GetSwitchModeStatus),
      Network("SetSwitchMode", &N::SetSwitchMode),
      Network("GetHostname", &N::GetHostname),
      Network("SetHostname", &N::SetHostname),
      Network("GetNTPServer", &N::GetNTPServer),
      Network("SetNTPServer", &N::SetNTPServer),
      Network("ReloadNetworkConfig", &N::ReloadNetworkConfig),
      Network("GetRouting", &N::GetRouting),
      Network("GetDNSList", &N::GetDNSList),
      Network("ReloadNTPConfig", &N::ReloadNTPConfig),
      Network("FactoryReset", &N::FactoryReset),
  };
  return makers;
}

// The two functions whose calls depend on what the device has.
bool Tapping() {
  ostrevan::grpcdapi::Channels channels;
  if (!Call(Dapi(), &DapiStub::GetRxChannels, {}, channels)) return false;
  for (const auto& channel : channels.channels()) {
    ostrevan::grpcdapi::LinkInfo link;
    if (!Call(Dapi(), &DapiStub::GetRxChannelLink, channel, link)) return false;
  }
  return true;
}

struct Replies {
  ostrevan::networkmanager::Interfaces known;
  ostrevan::networkmanager::InterfacesConfig config;
  ostrevan::networkmanager::InterfacesStatus status;
};

bool Ask(Replies& replies) {
  if (!Call(NetworkManager(), &NetworkStub::GetAvailableInterfaces, {}, replies.known))
    return false;
  ostrevan::networkmanager::Ids ids;
  for (const auto& interface : replies.known.interfaces()) ids.add_ids(interface.id());
  return Call(NetworkManager(), &NetworkStub::GetNetworkConfig, ids, replies.config) &&
         Call(NetworkManager(), &NetworkStub::GetNetworkStatus, ids, replies.status);
}

bool AllInterfaces() {
  Replies replies;
  return Ask(replies);
}

struct Record {
  std::int32_t id;
  std::int32_t mode;
  bool active;
  std::string name;
  std::string mac;
  std::string ip;
  std::string netmask;
};

bool CopyAllInterfaces() {
  Replies replies;
  if (!Ask(replies)) return false;
  std::vector<Record> records;
  for (int i = 0; i < replies.known.interfaces_size(); ++i) {
    const auto& interface = replies.known.interfaces(i);
    const auto& live = replies.status.status(i);
    records.push_back({interface.id(), replies.config.configs(i).mode(), live.flag4(),
                       interface.name(), interface.mac(), live.ip(), live.netmask()});
  }
  benchmark::DoNotOptimize(records.data());
  return true;
}

// What setampname prints for the plain call's name, before its call.
Attempt AfterTheLine(const Attempt& call) {
  return [call] {
    std::fprintf(stderr, "libNetworkgRPC: setting hostname: %s %d\n", "amp1", 4);
    return call();
  };
}

}  // namespace

Attempt StubCalls(const support::Function& function) {
  if (function.name == "GetTapping") return &Tapping;
  if (function.name == "GetAllIPv4") return &AllInterfaces;
  if (function.steps.empty()) return {};
  std::vector<Attempt> calls;
  for (const support::Step& step : function.steps)
    calls.push_back(AllMakers().at(step.path)(step.request));
  if (function.name == "setampname") return AfterTheLine(calls.front());
  if (calls.size() == 1) return calls.front();
  return [calls] {
    bool done = true;
    for (const Attempt& call : calls) done = call() && done;
    return done;
  };
}

Attempt AllInterfacesByHand() { return &CopyAllInterfaces; }

}  // namespace bench
