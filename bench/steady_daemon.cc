// Both daemons in a process of their own, with fixed answers to every function of the
// table, so that no work of a daemon is measured.
//
// Prints the two endpoints, then serves until its standard input ends or it is
// killed.
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <cstdio>

#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/functions.h"

namespace {

using support::Answer;
using support::DapiPath;
using support::NetworkManagerPath;

struct Sizes {
  int channels = 2;
  int interfaces = 4;
  int rates = 2;
};

// The first three have the roles, as in every scripted device.
Answer Interfaces(int count) {
  ostrevan::networkmanager::Interfaces list;
  for (int i = 0; i < count; ++i) {
    auto& added = *list.add_interfaces();
    added.set_id(support::kLan0 + i);
    added.set_name("lan" + std::to_string(i));
    added.set_mac(support::kLan0Mac);
  }
  return support::Reply(list);
}

// Describes the interfaces of the request, in its order.
template <class Reply, class Describe>
auto ForEachId(Describe describe) {
  return [describe](const std::string& request) {
    ostrevan::networkmanager::Ids ids;
    if (!ids.ParseFromString(request)) return support::Failure(grpc::StatusCode::INVALID_ARGUMENT);
    Reply reply;
    for (const int id : ids.ids()) describe(id, reply);
    return support::Reply(reply);
  };
}

template <class Message>
void Describe(int id, Message& described) {
  described.set_id(id);
  described.set_ip("192.168.100.101");
  described.set_netmask("255.255.255.0");
}

void ScriptInterfaces(support::Device& device, int count) {
  using ostrevan::networkmanager::InterfacesConfig;
  using ostrevan::networkmanager::InterfacesStatus;
  auto& daemon = *device.network_manager;
  daemon.Script(NetworkManagerPath("GetAvailableInterfaces"), Interfaces(count));
  daemon.ScriptEach(NetworkManagerPath("GetNetworkConfig"),
                    ForEachId<InterfacesConfig>([](int id, InterfacesConfig& reply) {
                      Describe(id, *reply.add_configs());
                    }));
  daemon.ScriptEach(NetworkManagerPath("GetNetworkStatus"),
                    ForEachId<InterfacesStatus>([](int id, InterfacesStatus& reply) {
                      auto& added = *reply.add_status();
                      Describe(id, added);
                      added.set_flag4(true);
                    }));
}

void ScriptChannels(support::Device& device, int count) {
  ostrevan::grpcdapi::Channels list;
  for (int id = 1; id <= count; ++id) {
    auto& added = *list.add_channels();
    added.set_id(id);
    added.set_name("label of channel " + std::to_string(id));
    added.set_defaultname(std::to_string(id));
  }
  ostrevan::grpcdapi::LinkInfo link;
  link.set_devicename("stage box, left wing");
  link.set_channelname("microphone 1, lead singer");
  device.dapi->Script(DapiPath("GetRxChannels"), support::Reply(list));
  device.dapi->Script(DapiPath("GetRxChannelLink"), support::Reply(link));
}

void ScriptRates(support::Device& device, int count) {
  ostrevan::grpcdapi::AvailableSampleRates rates;
  for (int i = 0; i < count; ++i) rates.add_samplerates(44100);
  device.dapi->Script(DapiPath("GetAvailableSampleRates"), support::Reply(rates));
}

// "unix:PATH" is used as it is; anything else is a loopback port.
bool IsUnix(const std::string& address) { return address.rfind("unix:", 0) == 0; }
std::string ListenOn(const std::string& address) {
  return IsUnix(address) ? address : "127.0.0.1:" + address;
}
std::string Endpoint(const std::string& address, const support::ScriptedDaemon& daemon) {
  return IsUnix(address) ? address : daemon.Url();
}

void Serve(const std::string& network_manager, const std::string& dapi, const Sizes& sizes) {
  support::Device device(ListenOn(network_manager), ListenOn(dapi));
  ScriptAlways(device, support::AllFunctions());
  ScriptInterfaces(device, sizes.interfaces);
  ScriptChannels(device, sizes.channels);
  ScriptRates(device, sizes.rates);
  device.network_manager->ForgetRequests();
  device.dapi->ForgetRequests();

  std::printf("%s %s\n", Endpoint(network_manager, *device.network_manager).c_str(),
              Endpoint(dapi, *device.dapi).c_str());
  std::fflush(stdout);
  char byte = 0;
  while (read(STDIN_FILENO, &byte, 1) > 0) continue;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App options("Serve fixed answers until standard input ends.");
  std::string network_manager = "0";
  std::string dapi = "0";
  Sizes sizes;
  options.add_option("NETWORK-MANAGER", network_manager,
                     "loopback port, 0 for a free one, or unix:PATH");
  options.add_option("DAPI", dapi, "the same for the Dante API daemon");
  options.add_option("--channels", sizes.channels, "number of receive channels");
  options.add_option("--interfaces", sizes.interfaces, "number of interfaces, at least 3");
  options.add_option("--rates", sizes.rates, "number of sample rates");
  CLI11_PARSE(options, argc, argv);
  Serve(network_manager, dapi, sizes);
  return 0;
}
