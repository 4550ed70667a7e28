// Changes to a device, each of which is read back.
#pragma once

#include "examples/table.h"

namespace demo {

/// Renames the first transmit channel, subscribes the first receive channel to
/// it and gives the control interface a static address. Each change that could
/// be verified becomes a row: what, before, after. Throws StepFailed at the
/// first that could not.
void MakeChanges(Table& done);

}  // namespace demo
