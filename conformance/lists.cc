// Replies agree with each other. Nothing is changed.
#include <arpa/inet.h>

#include <set>

#include "conformance/check.h"

namespace conformance {
namespace {

using tool::Daemon;

constexpr Daemon kNetworkManager = Daemon::kNetworkManager;
constexpr Daemon kDante = Daemon::kDante;

bool IsAddress(const Json& text, bool is_v6_too = false) {
  in6_addr address{};
  const auto string = text.get<std::string>();
  return inet_pton(AF_INET, string.c_str(), &address) == 1 ||
         (is_v6_too && inet_pton(AF_INET6, string.c_str(), &address) == 1);
}

void ExpectAddress(const Json& text, const std::string& what) {
  Expect(IsAddress(text), what + " is " + text.dump() + ", which is no IPv4 address");
}

void ExpectUnique(const Json& list, const char* member) {
  std::set<Json> seen;
  for (const Json& entry : list)
    Expect(seen.insert(entry[member]).second,
           "two entries have the " + std::string(member) + ' ' + entry[member].dump());
}

std::set<Json> IdsOf(const Json& list) {
  std::set<Json> ids;
  for (const Json& entry : list) ids.insert(entry["id"]);
  return ids;
}

Json Interfaces(Session& it) { return it.Member("GetAvailableInterfaces", "interfaces"); }

// One entry for each interface that was asked for, all at once and one by one.
void ListsTheSame(Session& it, const char* method, const char* member) {
  it.Need("lists.Interfaces");
  const Json interfaces = Interfaces(it);
  const auto ask = [&](const std::set<Json>& ids) {
    const Json list = it.Member(method, member, {{"ids", ids}});
    ExpectUnique(list, "id");
    Expect(IdsOf(list) == ids,
           "asked for the ids " + Json(ids).dump() + ", got " + Json(IdsOf(list)).dump());
  };
  ask(IdsOf(interfaces));
  for (const Json& interface : interfaces) ask({interface["id"]});
}

Json EachOf(Session& it, const char* method, const char* member) {
  return it.Member(method, member, {{"ids", IdsOf(Interfaces(it))}});
}

void StoredAddresses(Session& it) {
  it.Need("lists.NetworkConfig");
  constexpr int kStatic = 1;
  for (const Json& config : EachOf(it, "GetNetworkConfig", "configs")) {
    if (config["mode"] != kStatic) continue;
    const std::string of = " of interface " + config["id"].dump();
    ExpectAddress(config["ip"], "the address" + of);
    ExpectAddress(config["netmask"], "the netmask" + of);
  }
}

void AddressesInEffect(Session& it) {
  it.Need("lists.NetworkStatus");
  for (const Json& status : EachOf(it, "GetNetworkStatus", "status")) {
    if (status["flag4"] == false) continue;
    const std::string of = " of interface " + status["id"].dump() + ", whose flag4 is true,";
    ExpectAddress(status["ip"], "the address" + of);
    ExpectAddress(status["netmask"], "the netmask" + of);
  }
}

void SwitchModes(Session& it) {
  const Json modes = it.Member("GetAvailableSwitchModes", "modes");
  if (modes.empty()) throw Skipped{"the device has no switch modes"};
  ExpectUnique(modes, "id");
  for (const char* method : {"GetSwitchMode", "GetSwitchModeStatus"}) {
    const Json mode = it.Read(method);
    Expect(IdsOf(modes).count(mode["id"]) != 0,
           "GetAvailableSwitchModes does not list the mode of " + std::string(method));
    for (const Json& listed : modes)
      Expect(listed["id"] != mode["id"] || listed["name"] == mode["name"],
             std::string(method) + " has another name for the mode than the list");
  }
}

void Gateways(Session& it) {
  const auto check = [](const Json& routing) {
    if (routing["gateway"] != Json("")) ExpectAddress(routing["gateway"], "the gateway");
  };
  check(it.Read("GetRouting"));
  for (const Json& interface : Interfaces(it))
    check(it.Read("GetRoutingForInterface", {{"id", interface["id"]}}));
}

void Dns(Session& it) {
  for (const Json& server : it.Member("GetDNSList", "dns"))
    Expect(IsAddress(server, true), "the DNS server is " + server.dump() + ", which is no address");
}

void TxChannels(Session& it) {
  const Json channels = it.Member("GetTxChannels", "channels");
  ExpectUnique(channels, "id");
  for (const Json& channel : channels)
    Expect(channel["name"] != Json(""), "channel " + channel["id"].dump() + " has no label");
}

void Subscriptions(Session& it) {
  for (const Json& channel : it.Member("GetRxChannels", "channels"))
    Expect(it.Read("GetRxChannelLink", channel)["id"] == channel["id"],
           "asked for channel " + channel["id"].dump() + ", got another one");
}

void SampleRates(Session& it) {
  const Json rates = it.Member("GetAvailableSampleRates", "sampleRates");
  const Json rate = it.Read("GetSampleRate")["sampleRate"];
  Expect(std::set<Json>(rates.begin(), rates.end()).count(rate) != 0,
         "the rate " + rate.dump() + " is not among those available");
}

void Latencies(Session& it) {
  Expect(it.Read("GetLatency")["latency"] >= it.Read("GetMinLatency")["latency"],
         "the latency is below the minimum");
}

void Aes67(Session& it) {
  Expect(it.Member("GetIsAES67Available", "status") == true ||
             it.Member("GetAES67Status", "status") == false,
         "AES67 is on, but not available");
}

Check Reads(const char* name, Daemon daemon, const char* expected, const char* advice,
            std::function<void(Session&)> run) {
  return {name, daemon, Effect::kReads, expected, advice, std::move(run)};
}

}  // namespace

Checks Lists() {
  return {
      Reads("lists.Interfaces", kNetworkManager, "Each interface has an id and a name of its own",
            "the library finds its interfaces by name and asks for them by id",
            [](Session& it) {
              const Json interfaces = Interfaces(it);
              ExpectUnique(interfaces, "id");
              ExpectUnique(interfaces, "name");
            }),
      Reads("lists.NetworkConfig", kNetworkManager,
            "GetNetworkConfig replies with one entry for each id that is asked for",
            "an interface that is in one list only is shown without addresses",
            [](Session& it) { ListsTheSame(it, "GetNetworkConfig", "configs"); }),
      Reads("lists.NetworkStatus", kNetworkManager,
            "GetNetworkStatus replies with one entry for each id that is asked for",
            "an interface that is in one list only is shown without addresses",
            [](Session& it) { ListsTheSame(it, "GetNetworkStatus", "status"); }),
      Reads("lists.StoredAddresses", kNetworkManager,
            "An interface with mode STATIC has an IPv4 address and netmask, with dots",
            "check addresses when they are stored", StoredAddresses),
      Reads("lists.AddressesInEffect", kNetworkManager,
            "If flag4 is true, address and netmask are in effect, with dots",
            "set flag4 only if there are addresses", AddressesInEffect),
      Reads("lists.SwitchModes", kNetworkManager,
            "The stored switch mode and the one in effect are in the list, with the same names",
            "take all three from one table", SwitchModes),
      Reads("lists.Gateways", kNetworkManager, "Gateways are IPv4 addresses, or empty",
            "reply with an empty string if there is no gateway", Gateways),
      Reads("lists.Dns", kNetworkManager, "DNS servers are IP addresses",
            "reply with an empty list if there is no server", Dns),
      Reads("lists.TxChannels", kDante, "Each transmit channel has an id of its own and a label",
            "a label that was never set is the factory label", TxChannels),
      Reads("lists.RxChannels", kDante, "Each receive channel has an id of its own",
            "the library sends the id back with GetRxChannelLink",
            [](Session& it) { ExpectUnique(it.Member("GetRxChannels", "channels"), "id"); }),
      Reads("lists.Subscriptions", kDante,
            "GetRxChannelLink replies with the id of the channel that is asked for",
            "find the channel by Channel.id", Subscriptions),
      Reads("lists.SampleRates", kDante, "The sample rate is one of those available",
            "list every rate that the module can have", SampleRates),
      Reads("lists.Latencies", kDante, "The latency is not below the minimum",
            "use one unit for GetLatency and GetMinLatency", Latencies),
      Reads("lists.Aes67", kDante, "AES67 is on only if it is available",
            "reply with false if AES67 is not available", Aes67),
  };
}

}  // namespace conformance
