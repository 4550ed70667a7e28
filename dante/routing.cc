// Which transmitting device and channel each receive channel listens to.
#include "DantegRPC.h"
#include "client/DAPIClient.h"
#include "dante/records.h"
#include "facade/frame.h"

using facade::ExceptionLine;
using facade::Frame;
using ostrevan::grpcdapi::Channels;
using ostrevan::grpcdapi::LinkInfo;

bool DantegRPC::GetTapping(std::vector<ChannelLink>& links) {
  const Frame frame{"GetTapping", ExceptionLine::kNameOnly};
  return frame.Run([&] {
    auto& client = DAPIClient::GetInstance();
    Channels receiving;
    if (!client.GetRxChannels(&receiving).ok())
      return frame.Fail("libNetworkgRPC: ERROR: error while requesting rx channels list in %s\n");
    links.reserve(links.size() + static_cast<std::size_t>(receiving.channels_size()));
    for (const auto& channel : receiving.channels()) {
      LinkInfo link;
      if (!client.GetRxChannelLink(channel, &link).ok())
        return frame.Fail("libNetworkgRPC: ERROR: error while requesting rx channel link in %s\n");
      links.push_back(dante::ToRecord(channel.id(), link));
    }
    return true;
  });
}

bool DantegRPC::SetTapping(const ChannelLink& link) {
  return facade::Change({"SetTapping", ExceptionLine::kNameAndText}, &DAPIClient::SetRxChannelLink,
                        "libNetworkgRPC: ERROR: error while setting rx channel link in %s\n",
                        [&](LinkInfo& request) { dante::ToWire(link, request); });
}
