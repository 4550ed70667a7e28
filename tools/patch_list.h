// Subscriptions and channel names as tables, for spreadsheets and scripts.
#pragma once

#include <string>

#include "tools/json.h"

namespace tool {

/// The subscriptions, entries of "routing" in a state document, as CSV: a header line,
/// then one line per receive channel.
std::string RoutingToCsv(const Json& routing);

/// The state document of a CSV file; "-" is standard input. Throws a Failure, also for a
/// channel that is not among `receivers`, [{"id", ...}, ...].
Json RoutingFromCsv(const std::string& file, const Json& receivers);

/// The same for a file with the columns direction, id and name. `present` is the "dante"
/// of a state document with both lists of channels.
Json ChannelNamesFromCsv(const std::string& file, const Json& present);

}  // namespace tool
