// Rename a transmit channel and verify the new label.
//
// usage: rename_channel ID LABEL
//
// A failed change may have been made nevertheless, and a daemon may shorten a label that it
// accepts. Only reading back shows the label in effect.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "DantegRPC.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  DantegRPC::Channel channel;
  channel.id = std::atoi(argv[1]);
  channel.name = argv[2];  // UTF-8, not empty
  const bool confirmed = DantegRPC::SetTxChannelName(channel);

  std::vector<DantegRPC::Channel> channels;
  if (!DantegRPC::GetTxChannels(channels)) {
    std::cerr << "the label is not known: it cannot be read back\n";
    return 1;
  }
  const auto found = std::find_if(channels.begin(), channels.end(),
                                  [&](const auto& it) { return it.id == channel.id; });
  if (found == channels.end()) {
    std::cerr << "there is no transmit channel " << channel.id << '\n';
    return 1;
  }
  std::cout << "transmit channel " << found->id << " is labelled '" << found->name << "'\n";
  return confirmed && found->name == channel.name ? 0 : 1;
}
