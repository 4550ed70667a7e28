// Translation between the Dante API daemon's messages and the records that
// applications see.
#pragma once

#include "DAPIClient.h"
#include "DantegRPC.h"

namespace dante {

DantegRPC::Channel ToRecord(const ostrevan::grpcdapi::Channel& channel);
void ToWire(const DantegRPC::Channel& record, ostrevan::grpcdapi::Channel& request);

/// `id` is the receive channel's own number, whatever number the reply carries.
DantegRPC::ChannelLink ToRecord(std::int32_t id, const ostrevan::grpcdapi::LinkInfo& link);

/// A record that names no complete source becomes a request with nothing but
/// the channel number, which removes the subscription.
void ToWire(const DantegRPC::ChannelLink& record, ostrevan::grpcdapi::LinkInfo& request);

}  // namespace dante
