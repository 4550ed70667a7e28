#include "tools/pending.h"

#include <algorithm>

#include "state_document/table.h"
#include "tools/call.h"
#include "tools/switch.h"

namespace tool {

std::string InterfacePath(const std::string& name) {
  return state_document::EntryPath("network.interfaces", name);
}

std::vector<PendingSetting> PendingNetworkSettings() {
  std::vector<PendingSetting> pending;
  const auto text = [](const nm::SwitchMode& it) {
    return std::to_string(it.id()) + " " + it.name();
  };
  const auto stored = ReadStoredSwitchMode();
  const auto in_effect = ReadSwitchModeInEffect();
  if (stored.id() != in_effect.id())
    pending.push_back(
        {"network.switch_mode", "switch mode " + text(stored) + ", now " + text(in_effect)});
  for (const Interface& it : ReadInterfaces()) {
    if (!it.IsPending().value_or(false)) continue;
    const std::string now =
        it.IsActive() ? AddressText(it.status->ip(), it.status->netmask()) : "not in use";
    pending.push_back({InterfacePath(it.name),
                       "interface '" + it.name + "' at " +
                           AddressText(it.stored->ip(), it.stored->netmask()) + ", now " + now});
  }
  return pending;
}

std::vector<std::string> AlsoApplied(const std::vector<PendingSetting>& pending,
                                     const std::vector<std::string>& changed) {
  std::vector<std::string> lines;
  for (const PendingSetting& it : pending)
    if (std::find(changed.begin(), changed.end(), it.path) == changed.end())
      lines.push_back("the reload also applies " + it.text);
  return lines;
}

void ReloadNetwork() { Change(rpc::kReloadNetworkConfig, "reload the network configuration"); }

void ReloadNtp() { Change(rpc::kReloadNTPConfig, "reload the NTP configuration"); }

void Apply(const std::string& what, Json& result, const std::function<void()>& reload) {
  result["stored"] = true;
  try {
    reload();
    result["applied"] = true;
  } catch (Failure& failure) {
    const bool is_known = failure.outcome == Outcome::kNotDone;
    result["applied"] = is_known ? Json(false) : Json();
    failure.message = what +
                      (is_known ? " is stored, not applied: " : " is stored, perhaps applied: ") +
                      failure.message;
    if (is_known) failure.outcome = Outcome::kPartly;
    failure.result = result;
    throw;
  }
}

}  // namespace tool
