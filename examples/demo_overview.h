// Everything that the library can read of a device, laid out for a terminal.
#pragma once

#include <ostream>
#include <string>

#include "DantegRPC.h"

namespace demo {

/// Throws StepFailed when something cannot be read.
void PrintOverview(std::ostream& out);

/// What a receive channel takes its audio from, such as "01 @ Stage-Box"; "-"
/// for nothing.
std::string Source(const DantegRPC::ChannelLink& link);

}  // namespace demo
