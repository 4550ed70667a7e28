// One member of a state document by its path, as messages and `networkgrpc diff` write
// it: "network.interfaces[lan0].speed". Entries of a list are named by their key.
#pragma once

#include "simulator/json.h"
#include "simulator/state_change.h"

namespace simulator {

/// Changes the member of a complete document. Throws std::runtime_error, which names the
/// path, if there is no such member or the value is no JSON.
void Change(Json& document, const StateChange& change);

}  // namespace simulator
