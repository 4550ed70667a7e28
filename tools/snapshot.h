// What is stored and what is in effect at one moment, and how it is restored.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/daemon.h"
#include "tools/json.h"

namespace tool {

/// The settings of one daemon, or of both for kNone. Interfaces are kept as the daemon
/// sent them, with what this program does not know.
Json TakeSnapshot(Daemon of);

/// What of a snapshot cannot be restored exactly, a line each.
std::vector<std::string> NotRestoredExactly(const Json& snapshot);

/// Tries once. Throws the first Failure after it has tried the rest; may be called again.
///
/// `must_reload` is kept between attempts: whether a reload is still to be made. `save` is
/// called when it changes, before something depends on it.
void Restore(const Json& snapshot, bool& must_reload, const std::function<void()>& save);

}  // namespace tool
