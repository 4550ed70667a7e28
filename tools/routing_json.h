// A receive channel's subscription, between the library's record and JSON: the
// form of the state document's "routing" entries.
#pragma once

#include "DantegRPC.h"
#include "tools/json.h"

namespace tool {

Json ToJson(const DantegRPC::ChannelLink& link);

/// A channel that takes nothing.
DantegRPC::ChannelLink Unsubscribed(std::int32_t rx_channel);

/// The other way; members that are missing count as empty.
DantegRPC::ChannelLink LinkFromJson(const Json& entry);

/// What the library can make of an entry: the same entry, or one that lacks
/// what cannot be sent.
Json Achievable(const Json& entry);

/// "Out 1 @ Stage box", "stream 239.1.2.3", or "".
std::string SourceText(const Json& entry);

}  // namespace tool
