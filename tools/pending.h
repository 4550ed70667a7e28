// Settings that are stored, but not in effect, and the reload that applies them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/interface.h"

namespace tool {

struct PendingSetting {
  std::string path;  // in a state document, such as "network.switch_mode"
  std::string text;  // such as "switch mode 1 Redundant, now 0 Switched"
};

/// What a reload of the network configuration will apply. Dynamic interfaces are not among
/// them: daemons do not report whether that mode is in effect.
std::vector<PendingSetting> PendingNetworkSettings();

/// The lines of a question that name these settings, without those at `changed`.
std::vector<std::string> AlsoApplied(const std::vector<PendingSetting>& pending,
                                     const std::vector<std::string>& changed = {});

/// The path of an interface in a state document.
std::string InterfacePath(const std::string& name);

/// Throws if it is not confirmed.
void ReloadNetwork();
void ReloadNtp();

/// Reloads after `what`, such as "the NTP server", was stored. Adds "stored" and "applied"
/// to the result, null for what is not known. A failure has that result.
void Apply(const std::string& what, Json& result, const std::function<void()>& reload);

}  // namespace tool
