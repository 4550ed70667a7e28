// Converts a receive channel's subscription between the library's record and the
// entries of "routing" in a state document.
#pragma once

#include "DantegRPC.h"
#include "tools/json.h"

namespace tool {

Json ToJson(const DantegRPC::ChannelLink& link);

/// A channel without a subscription.
DantegRPC::ChannelLink Unsubscribed(std::int32_t rx_channel);

/// The other way; `entry` has every member.
DantegRPC::ChannelLink LinkFromJson(const Json& entry);

/// What the library can set of an entry: the same entry, or one without what it
/// cannot send.
Json Achievable(const Json& entry);

/// "Out 1 @ Stage box", "stream 239.1.2.3", or "".
std::string SourceText(const Json& entry);

}  // namespace tool
