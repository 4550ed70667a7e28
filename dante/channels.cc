// Transmit and receive channels and their labels.
#include "DAPIClient.h"
#include "DantegRPC.h"
#include "call_frame/call_frame.h"
#include "dante/conversions.h"

namespace dapi = ostrevan::grpcdapi;
using call_frame::ExceptionLine;
using call_frame::Frame;

namespace {

auto AppendTo(std::vector<DantegRPC::Channel>& channels) {
  return [&channels](const dapi::Channels& reply) {
    channels.reserve(channels.size() + static_cast<std::size_t>(reply.channels_size()));
    for (const auto& channel : reply.channels()) channels.push_back(dante::ToRecord(channel));
  };
}

}  // namespace

bool DantegRPC::GetTxChannels(std::vector<Channel>& channels) {
  return call_frame::Read({"GetTxChannels", ExceptionLine::kNameOnly}, &DAPIClient::GetTxChannels,
                          "libNetworkgRPC: ERROR: error while requesting tx channels list in %s\n",
                          AppendTo(channels));
}

bool DantegRPC::GetRxChannels(std::vector<Channel>& channels) {
  return call_frame::Read({"GetRxChannels", ExceptionLine::kNameOnly}, &DAPIClient::GetRxChannels,
                          "libNetworkgRPC: ERROR: error while requesting rx channels list in %s\n",
                          AppendTo(channels));
}

bool DantegRPC::GetChannelsNum(int& tx, int& rx) {
  const Frame frame{"GetChannelsNum", ExceptionLine::kNameOnly};
  return frame.Run([&] {
    auto& client = DAPIClient::GetInstance();
    dapi::Channels sending;
    const bool tx_known = client.GetTxChannels(&sending).ok();
    if (tx_known) {
      tx = sending.channels_size();
    } else {
      frame.Fail("libNetworkgRPC: ERROR: error while requesting tx channels in %s\n");
    }
    dapi::Channels receiving;
    const bool rx_known = client.GetRxChannels(&receiving).ok();
    if (rx_known) {
      rx = receiving.channels_size();
    } else {
      frame.Fail("libNetworkgRPC: ERROR: error while requesting rx channels in %s\n");
    }
    return tx_known && rx_known;
  });
}

bool DantegRPC::SetTxChannelName(const Channel& channel) {
  const Frame frame{"SetTxChannelName", ExceptionLine::kNameAndText};
  if (channel.name.empty())
    return frame.Fail("libNetworkgRPC: ERROR: set label with invalid label %s\n");
  return call_frame::Change(frame, &DAPIClient::SetTxChannelName,
                            "libNetworkgRPC: ERROR: error while setting tx channel name in %s\n",
                            [&](dapi::Channel& request) { dante::ToWire(channel, request); });
}
