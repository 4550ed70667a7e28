// The steps that apply a state document to the device.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/daemon.h"
#include "tools/json.h"

namespace tool {

/// One setting that differs, and how it is set.
struct Step {
  std::string path;
  Json from;
  Json to;
  Daemon daemon = Daemon::kNone;
  /// Why the library cannot set `to`, else empty. `set` then sets what comes
  /// nearest, and is empty if that would change nothing.
  std::string impossible;
  std::function<bool()> set;
};

/// The steps in a safe order: what can cut the connection comes last.
std::vector<Step> Plan(const Json& current, const Json& wanted);

}  // namespace tool
