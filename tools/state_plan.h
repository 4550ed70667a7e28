// The steps that apply a state document to the device.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/json.h"

namespace tool {

/// When a setting that is stored comes into effect.
enum class Effect { kAtOnce, kNtpReload, kNetworkReload };

/// One setting that differs, and how it is set.
struct Step {
  std::string path;
  Json from;  // null if the device has no such object: it cannot be set
  Json to;
  Effect effect = Effect::kAtOnce;
  std::function<void()> set;
};

/// The steps in a safe order: what can cut the connection comes last. Only those of the
/// daemons whose part `current` has, and of the settings that `wanted` has.
std::vector<Step> Plan(const Json& current, const Json& wanted);

}  // namespace tool
