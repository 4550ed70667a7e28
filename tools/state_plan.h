// What it takes to give a device the state of a document.
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
  /// Why the library cannot make `to` of it, else empty. `set` then makes what
  /// comes nearest, and is empty when that would change nothing.
  std::string impossible;
  std::function<bool()> set;
};

/// The steps in the order in which they are safe to take: what can cut the
/// connection comes last.
std::vector<Step> Plan(const Json& current, const Json& wanted);

}  // namespace tool
