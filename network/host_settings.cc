// The host-wide settings: host name, NTP, DNS, default gateway, factory reset.
#include <utility>

#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "call_frame/call_frame.h"

namespace nm = ostrevan::networkmanager;
using call_frame::ExceptionLine;
using call_frame::Frame;

bool NetworkgRPC::GetHostname(std::string& hostname) {
  return call_frame::Read(
      {"GetHostname", ExceptionLine::kNameAndText}, &NetworkManagerClient::GetHostname,
      "libNetworkgRPC: %s: error while requesting informations via gRPC\n",
      [&](nm::Hostname& reply) { hostname = std::move(*reply.mutable_hostname()); });
}

bool NetworkgRPC::SetHostname(const std::string& hostname) {
  return call_frame::Change({"SetHostname", ExceptionLine::kNameAndText},
                            &NetworkManagerClient::SetHostname,
                            "libNetworkgRPC: %s: error while requesting informations via gRPC\n",
                            [&](nm::Hostname& request) { request.set_hostname(hostname); });
}

bool NetworkgRPC::GetNTPServer(std::string& server) {
  const Frame frame{"GetNTPServer", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    nm::NTPServer reply;
    if (!NetworkManagerClient::GetInstance().GetNTPServer(&reply).ok())
      return frame.Fail("libNetworkgRPC: %s: error while reading NTP server via gRPC\n");
    if (reply.servers().empty()) return false;  // no server is stored: not an error
    server = std::move(*reply.mutable_servers(0));
    return true;
  });
}

bool NetworkgRPC::SetNTPServer(const std::string& server, bool reload) {
  const Frame frame{"SetNTPServer", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    nm::NTPServer request;
    request.add_servers(server);
    auto& client = NetworkManagerClient::GetInstance();
    nm::Success set;
    const bool stored = call_frame::Confirmed(client.SetNTPServer(request, &set), set);
    if (!stored) frame.Fail("libNetworkgRPC: %s: error while setting NTP server via gRPC\n");
    nm::Success reloaded;
    if (reload && !call_frame::Confirmed(client.ReloadNTPConfig(&reloaded), reloaded))
      frame.Fail("libNetworkgRPC: ERROR: error while reloading NTP config in %s\n");
    return stored;
  });
}

bool NetworkgRPC::GetCurrentDNS(std::string& dns) {
  const Frame frame{"GetCurrentDNS", ExceptionLine::kNameAndText};
  return frame.Run([&] {
    nm::DNS reply;
    if (!NetworkManagerClient::GetInstance().GetDNSList(&reply).ok())
      return frame.Fail("libNetworkgRPC: %s: error while reading DNS list via gRPC\n");
    if (reply.dns().empty()) return false;  // no server is in use: not an error
    dns = std::move(*reply.mutable_dns(0));
    return true;
  });
}

bool NetworkgRPC::GetDefaultGateway(std::string& gateway) {
  return call_frame::Read(
      {"GetDefaultGateway", ExceptionLine::kNameAndText}, &NetworkManagerClient::GetRouting,
      "libNetworkgRPC: %s: error while requesting informations via gRPC\n",
      [&](nm::Routing& reply) { gateway = std::move(*reply.mutable_gateway()); });
}

bool NetworkgRPC::FactoryReset() {
  return call_frame::Change({"FactoryReset", ExceptionLine::kNameAndText},
                            &NetworkManagerClient::FactoryReset,
                            "libNetworkgRPC: %s: error while requesting informations via gRPC\n");
}
