// The subscriptions of the receive channels.
#include "DAPIClient.h"
#include "DantegRPC.h"
#include "call_frame/call_frame.h"
#include "dante/conversions.h"

namespace dapi = ostrevan::grpcdapi;
using call_frame::ExceptionLine;
using call_frame::Frame;

bool DantegRPC::GetTapping(std::vector<ChannelLink>& links) {
  const Frame frame{"GetTapping", ExceptionLine::kNameOnly};
  return frame.Run([&] {
    auto& client = DAPIClient::GetInstance();
    dapi::Channels receiving;
    if (!client.GetRxChannels(&receiving).ok())
      return frame.Fail("libNetworkgRPC: ERROR: error while requesting rx channels list in %s\n");
    links.reserve(links.size() + static_cast<std::size_t>(receiving.channels_size()));
    for (const auto& channel : receiving.channels()) {
      dapi::LinkInfo link;
      if (!client.GetRxChannelLink(channel, &link).ok())
        return frame.Fail("libNetworkgRPC: ERROR: error while requesting rx channel link in %s\n");
      links.push_back(dante::ToRecord(channel.id(), link));
    }
    return true;
  });
}

bool DantegRPC::SetTapping(const ChannelLink& link) {
  return call_frame::Change({"SetTapping", ExceptionLine::kNameAndText},
                            &DAPIClient::SetRxChannelLink,
                            "libNetworkgRPC: ERROR: error while setting rx channel link in %s\n",
                            [&](dapi::LinkInfo& request) { dante::ToWire(link, request); });
}
