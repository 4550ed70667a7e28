#include "tools/state_plan.h"

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "state_document/compare.h"
#include "tools/interface.h"
#include "tools/routing_json.h"
#include "tools/switch.h"

namespace tool {
namespace {

using state_document::Index;
using Steps = std::vector<Step>;

void Add(Steps& steps, Step step) {
  if (step.from != step.to) steps.push_back(std::move(step));
}

// NOLINTNEXTLINE(readability-container-size-empty): a JSON string is never an empty container
bool IsEmpty(const Json& string) { return string == ""; }

int ToFacade(const Json& number) { return static_cast<int>(number.get<std::uint32_t>()); }

// --- Dante -------------------------------------------------------------------------

void PlanDanteSettings(Steps& steps, const Json& from, const Json& to) {
  const auto add = [&](const char* name, std::function<bool()> set) {
    Add(steps,
        {std::string("dante.") + name, from[name], to[name], Daemon::kDante, "", std::move(set)});
  };
  const auto number = [&](const char* name) { return ToFacade(to[name]); };
  const auto flag = [&](const char* name) { return to[name].get<bool>(); };
  add("name", [name = to["name"].get<std::string>()] { return DantegRPC::SetName(name); });
  add("sample_rate", [it = number("sample_rate")] { return DantegRPC::SetSampleRate(it); });
  add("latency", [it = number("latency")] { return DantegRPC::SetLatency(it); });
  add("aes67", [it = flag("aes67")] { return DantegRPC::SetAES67(it); });
  add("transmit_disabled",
      [it = flag("transmit_disabled")] { return DantegRPC::SetDisableTx(it); });
  add("ptp_slave_only", [it = flag("ptp_slave_only")] { return DantegRPC::SetPtpSlaveOnly(it); });
}

void PlanChannels(Steps& steps, const Json& from, const Json& to) {
  const Index index(from, "id");
  for (const Json& it : to) {
    const Json* present = index.Find(it["id"]);
    const Json name = it.value("name", Json(""));
    Step step{"dante.tx_channels[" + it["id"].dump() + "].name",
              present != nullptr ? (*present)["name"] : Json(),
              name,
              Daemon::kDante,
              "",
              {}};
    if (present == nullptr)
      step.impossible = "not found on the device";
    else if (IsEmpty(name))
      step.impossible = "must not be empty";
    else
      step.set = [channel = DantegRPC::Channel{it["id"], name}] {
        return DantegRPC::SetTxChannelName(channel);
      };
    Add(steps, std::move(step));
  }
}

void PlanRouting(Steps& steps, const Json& from, const Json& to) {
  const Index index(from, "rx_channel");
  for (const Json& it : to) {
    const Json* present = index.Find(it["rx_channel"]);
    Step step{"dante.routing[" + it["rx_channel"].dump() + "]",
              present != nullptr ? *present : Json(),
              it,
              Daemon::kDante,
              "",
              {}};
    const Json achievable = Achievable(it);
    if (present == nullptr)
      step.impossible = "not found on the device";
    else if (achievable != it)
      step.impossible = "the library can set only part of it";
    if (present != nullptr && achievable != *present)
      step.set = [link = LinkFromJson(achievable)] { return DantegRPC::SetTapping(link); };
    Add(steps, std::move(step));
  }
}

// --- Network -----------------------------------------------------------------------

void PlanHost(Steps& steps, const Json& from, const Json& to) {
  Add(steps,
      {"network.hostname", from["hostname"], to["hostname"], Daemon::kNetworkManager, "",
       [name = to["hostname"].get<std::string>()] { return NetworkgRPC::SetHostname(name); }});
  Step ntp{"network.ntp", from["ntp"], to["ntp"], Daemon::kNetworkManager, "", {}};
  if (to["ntp"].size() == 1)
    ntp.set = [server = to["ntp"][0].get<std::string>()] {
      return NetworkgRPC::SetNTPServer(server, true);
    };
  else
    ntp.impossible = "the library sets exactly one NTP server";
  Add(steps, std::move(ntp));
  Add(steps,
      {"network.switch_mode", from["switch_mode"], to["switch_mode"], Daemon::kNetworkManager, "",
       [id = to["switch_mode"].get<std::int32_t>()] { return SelectSwitchMode(id); }});
}

// What the library stores of a configuration: static with all of it, or dynamic
// with none of it.
Json AchievableInterface(const Json& wanted) {
  Json result = wanted;
  if (wanted["mode"] == ModeToJson(kStatic) && !IsEmpty(wanted["ip"]) &&
      !IsEmpty(wanted["netmask"])) {
    while (result["dns"].size() > 1) result["dns"].erase(result["dns"].size() - 1);
    return result;
  }
  result["mode"] = ModeToJson(kDynamic);
  for (const char* member : {"ip", "netmask", "gateway"}) result[member] = "";
  result["dns"] = Json::array();
  return result;
}

NetworkgRPC::InterfaceInfo InfoFromJson(const Json& entry) {
  NetworkgRPC::InterfaceInfo info;
  info.mode = entry["mode"] == ModeToJson(kStatic) ? kStatic : kDynamic;
  info.ip = entry["ip"];
  info.netmask = entry["netmask"];
  info.gateway = entry["gateway"];
  if (!entry["dns"].empty()) info.dns = entry["dns"][0];
  return info;
}

void PlanInterfaces(Steps& steps, const Json& from, const Json& to) {
  const Index index(from, "name");
  for (const Json& it : to) {
    const std::string name = it["name"];
    const Json* present = index.Find(name);
    Step step{"network.interfaces[" + name + "]",
              present != nullptr ? *present : Json(),
              it,
              Daemon::kNetworkManager,
              "",
              {}};
    if (present == nullptr) {
      step.impossible = "not found on the device";
    } else {
      const Json achievable = AchievableInterface(it);
      if (achievable != it)
        step.impossible = "the library sets " + achievable["mode"].get<std::string>() +
                          " addressing with at most one DNS server instead";
      if (achievable != *present)
        step.set = [name, info = InfoFromJson(achievable)] {
          return NetworkgRPC::SetGenericIP(FindInterface(name).id, info, false);
        };
    }
    Add(steps, std::move(step));
  }
}

}  // namespace

std::vector<Step> Plan(const Json& current, const Json& wanted) {
  Steps steps;
  PlanDanteSettings(steps, current["dante"], wanted["dante"]);
  PlanChannels(steps, current["dante"]["tx_channels"], wanted["dante"]["tx_channels"]);
  PlanRouting(steps, current["dante"]["routing"], wanted["dante"]["routing"]);
  PlanHost(steps, current["network"], wanted["network"]);
  PlanInterfaces(steps, current["network"]["interfaces"], wanted["network"]["interfaces"]);
  return steps;
}

}  // namespace tool
