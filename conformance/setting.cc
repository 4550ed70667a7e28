#include "conformance/setting.h"

#include <algorithm>

#include "client/environment.h"

namespace conformance {
namespace {

constexpr int kStatic = 1;  // EnInterfaceMode

// Of a list, the entry with the id of `same`, or the first.
Json Entry(const Json& entries, const Json& same) {
  if (same.is_null()) {
    if (entries.empty()) throw Skipped{"the device has none"};
    return entries.front();
  }
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const Json& entry) { return entry["id"] == same["id"]; });
  Expect(found != entries.end(), "id " + same["id"].dump() + " is no longer in the list");
  return *found;
}

// What is read is what is set.
ToRequest Get(const char* method) {
  return [method](Session& it, const Json&) { return it.Read(method); };
}

ToRequest GetChannel(const char* method) {
  return [method](Session& it, const Json& same) {
    return Entry(it.Member(method, "channels"), same);
  };
}

Json GetConfig(Session& it, const Json& same) {
  const Json interface = same.is_null() ? AnyInterface(it, false) : same;
  return Entry(it.Member("GetNetworkConfig", "configs", {{"ids", {interface["id"]}}}), interface);
}

Json GetSwitchMode(Session& it, const Json&) { return {{"id", it.Read("GetSwitchMode")["id"]}}; }

Json GetLink(Session& it, const Json& same) {
  Json link = it.Read("GetRxChannelLink", Entry(it.Member("GetRxChannels", "channels"), same));
  link.erase("flag5");  // defined by the daemon
  return link;
}

// The first value that is not there already.
ToRequest Either(const char* member, const std::vector<Json>& values) {
  return [=](Session&, const Json& present) {
    Json other = present;
    other[member] = *std::find_if(values.begin(), values.end(),
                                  [&](const Json& value) { return value != present[member]; });
    return other;
  };
}

ToRequest Name(const char* member) { return Either(member, {"conformance-1", "conformance-2"}); }

ToRequest Toggle() { return Either("status", {true, false}); }

Json OtherSwitchMode(Session& it, const Json& present) {
  for (const Json& mode : it.Member("GetAvailableSwitchModes", "modes"))
    if (mode["id"] != present["id"]) return {{"id", mode["id"]}};
  throw Skipped{"the device has only one switch mode"};
}

Json OtherLink(Session&, const Json& present) {
  const bool is_first = present["deviceName"] == "conformance-1";
  return {{"id", present["id"]},
          {"deviceName", is_first ? "conformance-2" : "conformance-1"},
          {"channelName", "01"},
          {"raw", nullptr}};
}

// The minimum is possible, as the daemon reports.
Json OtherLatency(Session& it, const Json& present) {
  const auto least = it.Read("GetMinLatency")["latency"].get<std::uint32_t>();
  return {{"latency", present["latency"] == least ? 2 * least : least}};
}

Json OtherRate(Session& it, const Json& present) {
  for (const Json& rate : it.Member("GetAvailableSampleRates", "sampleRates"))
    if (rate != present["sampleRate"]) return {{"sampleRate", rate}};
  throw Skipped{"the device has only one sample rate"};
}

}  // namespace

const std::vector<Setting>& AllSettings() {
  constexpr const char* kReload = "answers.ReloadNetworkConfig";  // to restore it
  static const std::vector<Json> servers{Json::array({"192.0.2.1", "ntp.example"}),
                                         Json::array({"192.0.2.2"})};
  static const std::vector<Setting> settings{
      {"SetNetworkConfig", GetConfig, OtherAddress, true, "", true, {kReload}},
      {"SetSwitchMode",
       GetSwitchMode,
       OtherSwitchMode,
       true,
       "",
       true,
       {"lists.SwitchModes", kReload}},
      {"SetHostname", Get("GetHostname"), Name("hostname"), true, "hostname", false, {}},
      {"SetNTPServer",
       Get("GetNTPServer"),
       Either("servers", servers),
       true,
       "servers",
       false,
       {"answers.ReloadNTPConfig"}},
      {"SetName", Get("GetName"), Name("name"), true, "name", false, {}},
      {"SetTxChannelName", GetChannel("GetTxChannels"), Name("name"), true, "name", true, {}},
      {"SetRxChannelName", GetChannel("GetRxChannels"), Name("name"), true, "name", true, {}},
      {"SetRxChannelLink", GetLink, OtherLink, true, "", true, {}},
      {"SetLatency", Get("GetLatency"), OtherLatency, false, "", false, {"lists.Latencies"}},
      {"SetSampleRate", Get("GetSampleRate"), OtherRate, false, "", false, {"lists.SampleRates"}},
      {"SetAES67Status", Get("GetAES67Status"), Toggle(), false, "", false, {"lists.Aes67"}},
      {"SetDisableTxStatus", Get("GetDisableTxStatus"), Toggle(), true, "", false, {}},
      {"SetPtpSlaveOnlyStatus", Get("GetPtpSlaveOnlyStatus"), Toggle(), false, "", false, {}},
  };
  return settings;
}

std::string CheckOf(const Setting& setting) { return "settings." + setting.method.substr(3); }

void NeedAll(const Session& it, const Setting& setting) {
  it.Need(CheckOf(setting));
  for (const std::string& check : setting.needs) it.Need(check);
}

const Setting* FindSetting(const std::string& method) {
  for (const Setting& setting : AllSettings())
    if (setting.method == method) return &setting;
  return nullptr;
}

bool Holds(const Json& there, const Json& sent) {
  const auto members = sent.items();
  return std::all_of(members.begin(), members.end(), [&](const auto& member) {
    const bool is_flag = member.key().compare(0, 4, "flag") == 0;  // defined by the daemon
    return is_flag || there.value(member.key(), Json()) == member.value();
  });
}

Json AnyInterface(Session& it, bool is_active) {
  Json chosen;
  for (const Json& interface : it.Member("GetAvailableInterfaces", "interfaces")) {
    const Json ids = {{"ids", {interface["id"]}}};
    const Json config = Entry(it.Member("GetNetworkConfig", "configs", ids), interface);
    if (!config["wifi"].is_null()) continue;  // the password may not be what was read
    if (is_active &&
        Entry(it.Member("GetNetworkStatus", "status", ids), interface)["flag4"] == false)
      continue;
    if (chosen.is_null() || interface["name"] != client::kControlInterface.Value())
      chosen = interface;
  }
  if (chosen.is_null()) throw Skipped{"the device has no such wired interface"};
  return chosen;
}

Json OtherAddress(Session&, const Json& config) {
  Json other = config;
  other["mode"] = kStatic;
  other["ip"] = config["ip"] == "192.0.2.10" ? "192.0.2.11" : "192.0.2.10";
  other["netmask"] = "255.255.255.0";
  other["gateway"] = "192.0.2.1";
  other["dns"] = {"192.0.2.2", "192.0.2.3"};
  return other;
}

}  // namespace conformance
