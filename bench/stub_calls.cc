#include "bench/stub_calls.h"

#include <cstdio>

#include "client/channel.h"
#include "support/rpcs.h"

namespace bench {
namespace {

using DapiStub = ostrevan::grpcdapi::DAPI::Stub;
using NetworkStub = ostrevan::networkmanager::NetworkManager::Stub;

const support::DaemonStubs& Stubs() {
  static const support::DaemonStubs stubs(client::MakeChannel(client::kNetworkManagerUrl),
                                          client::MakeChannel(client::kDapiUrl));
  return stubs;
}

template <class Stub, class Request, class Reply>
bool Call(Stub& stub, grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*),
          const Request& request, Reply& reply) {
  return client::Call(stub, method, request, &reply).ok();
}

// The two functions whose calls depend on what the device reports.
bool Tapping() {
  ostrevan::grpcdapi::Channels channels;
  if (!Call(*Stubs().dante, &DapiStub::GetRxChannels, {}, channels)) return false;
  for (const auto& channel : channels.channels()) {
    ostrevan::grpcdapi::LinkInfo link;
    if (!Call(*Stubs().dante, &DapiStub::GetRxChannelLink, channel, link)) return false;
  }
  return true;
}

struct Replies {
  ostrevan::networkmanager::Interfaces known;
  ostrevan::networkmanager::InterfacesConfig config;
  ostrevan::networkmanager::InterfacesStatus status;
};

bool Read(Replies& replies) {
  if (!Call(*Stubs().network, &NetworkStub::GetAvailableInterfaces, {}, replies.known))
    return false;
  ostrevan::networkmanager::Ids ids;
  for (const auto& interface : replies.known.interfaces()) ids.add_ids(interface.id());
  return Call(*Stubs().network, &NetworkStub::GetNetworkConfig, ids, replies.config) &&
         Call(*Stubs().network, &NetworkStub::GetNetworkStatus, ids, replies.status);
}

bool AllInterfaces() {
  Replies replies;
  return Read(replies);
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
  if (!Read(replies)) return false;
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

// Prints what setampname prints before its call.
Attempt PrintThenCall(const Attempt& call, const std::string& line) {
  return [call, line] {
    std::fputs(line.c_str(), stderr);
    return call();
  };
}

}  // namespace

Attempt StubCalls(const support::Function& function) {
  if (function.name == "GetTapping") return &Tapping;
  if (function.name == "GetAllIPv4") return &AllInterfaces;
  if (function.steps.empty()) return {};
  std::vector<Attempt> calls;
  for (const support::Step& step : function.steps) {
    const auto call = support::RpcAt(step.path).through_stub(Stubs(), step.request);
    calls.push_back([call] { return call(nullptr).ok(); });
  }
  if (!function.printed.empty()) return PrintThenCall(calls.front(), function.printed);
  if (calls.size() == 1) return calls.front();
  return [calls] {
    bool done = true;
    for (const Attempt& call : calls) done = call() && done;
    return done;
  };
}

Attempt AllInterfacesByHand() { return &CopyAllInterfaces; }

}  // namespace bench
