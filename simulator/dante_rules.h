// Which requests the Dante API daemon accepts, and what they change.
//
// A function that changes something returns true if it did, false if the request
// is rejected; a rejected request changes nothing. Changes take effect at once.
#pragma once

#include "simulator/model.h"

namespace simulator {

/// `rate` in Hz. Rejects a rate that the module does not list.
bool SetSampleRate(Dante& dante, std::uint32_t rate);

/// `latency` in microseconds. Rejects a latency below the minimum.
bool SetLatency(Dante& dante, std::uint32_t latency);

/// Rejects enabling AES67 if the module does not support it.
bool SetAes67(Dante& dante, bool enabled);

/// Labels one channel of `channels`, the transmit or the receive channels.
/// Rejects an unknown channel and an empty label.
bool SetChannelName(std::vector<Channel>& channels, std::int32_t id, const std::string& name);

/// Subscribes a receive channel; a link without names and without a stream
/// removes its subscription. Rejects an unknown channel, a link with only one of
/// the two names, and a stream without an address or with an unknown encoding.
bool SetLink(Dante& dante, std::int32_t rx_channel, const Link& link);

}  // namespace simulator
