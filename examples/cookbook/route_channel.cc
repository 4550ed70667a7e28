// Subscribe a receive channel, move the subscription to another channel, remove it.
//
// SetTapping removes the subscription if the record is incomplete: without a device name, without a
// channel name, or raw without an address. Subscribe() rejects such a record; Clear() is explicit.
#include <iostream>
#include <string>
#include <vector>

#include "DantegRPC.h"

namespace {

bool Subscribe(int receive, const std::string& device, const std::string& channel) {
  if (device.empty() || channel.empty()) return false;
  DantegRPC::ChannelLink link;
  link.rxChannelId = receive;
  link.deviceName = device;
  link.channelName = channel;
  return DantegRPC::SetTapping(link);
}

bool Clear(int receive) {
  DantegRPC::ChannelLink nothing;
  nothing.rxChannelId = receive;
  return DantegRPC::SetTapping(nothing);
}

// Subscribes the new channel first: if that fails, the audio of the old one continues.
bool Move(int from, int to) {
  std::vector<DantegRPC::ChannelLink> links;
  if (!DantegRPC::GetTapping(links)) return false;
  for (auto link : links) {
    if (link.rxChannelId != from) continue;
    link.rxChannelId = to;  // everything else stays, raw parameters included
    return DantegRPC::SetTapping(link) && Clear(from);
  }
  return false;
}

bool Show(const std::string& step) {
  std::vector<DantegRPC::ChannelLink> links;
  if (!DantegRPC::GetTapping(links)) return false;
  std::cout << step << ':';
  for (const auto& link : links)
    if (!link.deviceName.empty())
      std::cout << " [" << link.rxChannelId << "] " << link.channelName << " @ " << link.deviceName;
  std::cout << '\n';
  return true;
}

}  // namespace

int main() {
  const bool done = Subscribe(1, "Stage box", "Mic 1") && Show("subscribed") && Move(1, 2) &&
                    Show("moved") && Clear(2) && Show("cleared");
  return done ? 0 : 1;
}
