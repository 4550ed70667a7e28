// Poll for changes: the daemons send no notifications. Ends after a number of changes.
//
// usage: poll_changes COUNT
//
// GetTapping makes one call per receive channel, so a second between two readings is often enough.
// It is not atomic, and a failed reading leaves a part of the records: that reading is discarded.
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "DantegRPC.h"

namespace {

// Sources by receive channel.
using Routing = std::map<int, std::string>;

bool Read(Routing& routing) {
  std::vector<DantegRPC::ChannelLink> links;  // a new one: GetTapping appends
  if (!DantegRPC::GetTapping(links)) return false;
  routing.clear();
  for (const auto& link : links)
    routing[link.rxChannelId] = link.isRaw ? "stream " + link.ip
                                : link.deviceName.empty()
                                    ? "nothing"
                                    : link.channelName + " @ " + link.deviceName;
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  int changes = argc == 2 ? std::atoi(argv[1]) : 1;
  Routing before;
  std::vector<DantegRPC::Channel> channels;
  while (!Read(before) || !DantegRPC::GetRxChannels(channels))
    std::this_thread::sleep_for(std::chrono::seconds(1));
  std::map<int, std::string> labels;
  for (const auto& channel : channels) labels[channel.id] = channel.name;
  std::cout << "polling " << before.size() << " receive channels" << std::endl;
  while (changes > 0) {
    std::this_thread::sleep_for(std::chrono::seconds(1));
    Routing now;
    if (!Read(now)) continue;  // the daemon restarts, for example
    for (const auto& [channel, source] : now) {
      if (before[channel] == source) continue;
      std::cout << "receive channel " << channel << " '" << labels[channel] << "': " << source
                << std::endl;
      --changes;
    }
    before = now;
  }
}
