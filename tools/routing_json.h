// Converts a receive channel's subscription between the daemon's message and the entries
// of "routing" in a state document.
#pragma once

#include "ostrevan/grpcdapi.pb.h"
#include "tools/json.h"

namespace tool {

Json ToJson(const ostrevan::grpcdapi::LinkInfo& link);

/// A channel without a subscription.
ostrevan::grpcdapi::LinkInfo Unsubscribed(std::int32_t rx_channel);

/// The other way; `entry` has every member.
ostrevan::grpcdapi::LinkInfo LinkFromJson(const Json& entry);

/// "Out 1 @ Stage box", "stream 239.1.2.3", or "".
std::string SourceText(const Json& entry);

}  // namespace tool
