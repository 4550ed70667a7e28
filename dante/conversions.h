// Conversions between the Dante API daemon's messages and the public records.
#pragma once

#include "DAPIClient.h"
#include "DantegRPC.h"

namespace dante {

DantegRPC::Channel ToRecord(const ostrevan::grpcdapi::Channel& channel);
void ToWire(const DantegRPC::Channel& record, ostrevan::grpcdapi::Channel& request);

/// `id` is the id of the requested receive channel; that of the reply is ignored.
DantegRPC::ChannelLink ToRecord(std::int32_t id, const ostrevan::grpcdapi::LinkInfo& link);

/// Fills a request with all raw parameters or both names. If they are incomplete,
/// the request carries the channel id only, which removes the subscription.
void ToWire(const DantegRPC::ChannelLink& record, ostrevan::grpcdapi::LinkInfo& request);

}  // namespace dante
