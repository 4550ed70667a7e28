#include "tools/state_plan.h"

#include "state_document/compare.h"
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/pending.h"
#include "tools/routing_json.h"
#include "tools/switch.h"

namespace tool {
namespace {

using state_document::Index;
using Steps = std::vector<Step>;

void Add(Steps& steps, Step step) {
  if (step.from != step.to) steps.push_back(std::move(step));
}

// --- Dante -------------------------------------------------------------------------

template <class Value, class Function>
void AddSetting(Steps& steps, const Json& from, const Json& to, const char* name, Function set) {
  if (to.contains(name))
    Add(steps, {std::string("dante.") + name, from[name], to[name], Effect::kAtOnce,
                [set, value = to[name].get<Value>()] { set(value); }});
}

void PlanDanteSettings(Steps& steps, const Json& from, const Json& to) {
  AddSetting<std::string>(steps, from, to, "name", SetDeviceName);
  AddSetting<std::uint32_t>(steps, from, to, "sample_rate", SetSampleRate);
  AddSetting<std::uint32_t>(steps, from, to, "latency", SetLatency);
  AddSetting<bool>(steps, from, to, "aes67", SetAes67);
  AddSetting<bool>(steps, from, to, "transmit_disabled", SetTransmitDisabled);
  AddSetting<bool>(steps, from, to, "ptp_slave_only", SetPtpSlaveOnly);
}

void PlanChannels(Steps& steps, const std::string& list, const Json& from, const Json& to,
                  void (*rename)(std::int32_t id, const std::string& name)) {
  if (!to.contains(list)) return;
  const Index index(from[list], "id");
  for (const Json& it : to[list]) {
    const Json* present = index.Find(it["id"]);
    const std::string name = it.value("name", "");
    Add(steps, {"dante." + list + "[" + it["id"].dump() + "].name",
                present != nullptr ? (*present)["name"] : Json(), name, Effect::kAtOnce,
                [=, id = it["id"].get<std::int32_t>()] { rename(id, name); }});
  }
}

void PlanRouting(Steps& steps, const Json& from, const Json& to) {
  if (!to.contains("routing")) return;
  const Index index(from["routing"], "rx_channel");
  for (const Json& it : to["routing"]) {
    const Json* present = index.Find(it["rx_channel"]);
    Add(steps,
        {"dante.routing[" + it["rx_channel"].dump() + "]", present != nullptr ? *present : Json(),
         it, Effect::kAtOnce, [link = LinkFromJson(it)] { SetSubscription(link); }});
  }
}

// --- Network -----------------------------------------------------------------------

void PlanHost(Steps& steps, const Json& from, const Json& to) {
  Add(steps, {"network.hostname", from["hostname"], to["hostname"], Effect::kAtOnce,
              [name = to["hostname"].get<std::string>()] { SetHostname(name); }});
  Add(steps, {"network.ntp", from["ntp"], to["ntp"], Effect::kNtpReload,
              [servers = to["ntp"].get<std::vector<std::string>>()] { StoreNtpServers(servers); }});
  Add(steps, {"network.switch_mode", from["switch_mode"], to["switch_mode"], Effect::kNetworkReload,
              [id = to["switch_mode"].get<std::int32_t>()] { SelectSwitchMode(id); }});
}

void PlanInterfaces(Steps& steps, const Json& from, const Json& to) {
  const Index index(from, "name");
  for (const Json& it : to) {
    const std::string name = it["name"];
    const Json* present = index.Find(name);
    Add(steps, {InterfacePath(name), present != nullptr ? *present : Json(), it,
                Effect::kNetworkReload, [it, name] {
                  const Interface interface = FindInterface(name);
                  StoreConfiguration(interface, WithAddresses(interface, it));
                }});
  }
}

}  // namespace

std::vector<Step> Plan(const Json& current, const Json& wanted) {
  Steps steps;
  if (current.contains("dante")) {
    const Json& from = current["dante"];
    const Json& to = wanted["dante"];
    PlanDanteSettings(steps, from, to);
    PlanChannels(steps, "tx_channels", from, to, RenameTxChannel);
    PlanChannels(steps, "rx_channels", from, to, RenameRxChannel);
    PlanRouting(steps, from, to);
  }
  if (current.contains("network")) {
    PlanHost(steps, current["network"], wanted["network"]);
    PlanInterfaces(steps, current["network"]["interfaces"], wanted["network"]["interfaces"]);
  }
  return steps;
}

}  // namespace tool
