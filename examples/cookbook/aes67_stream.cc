// Subscribe a receive channel to an AES67 stream by its parameters.
//
// The meaning of value2 to value6 is defined by the daemon: take them from its documentation, or
// from the record that GetTapping returns for a working subscription.
#include <iostream>
#include <vector>

#include "DantegRPC.h"

int main() {
  bool available = false;
  bool enabled = false;
  if (!DantegRPC::GetAES67Available(available) || !DantegRPC::GetAES67Status(enabled)) return 1;
  if (!available) {
    std::cerr << "the module does not support AES67\n";
    return 1;
  }
  if (!enabled && !DantegRPC::SetAES67(true)) return 1;

  DantegRPC::ChannelLink link;
  link.rxChannelId = 3;
  link.isRaw = true;
  link.ip = "239.69.0.2";  // without it, SetTapping would remove the subscription
  link.encoding = 1;       // L16; 0 is L24
  link.hasSessionId = true;
  link.sessionId = 7;
  if (!DantegRPC::SetTapping(link)) return 1;

  std::vector<DantegRPC::ChannelLink> links;
  if (!DantegRPC::GetTapping(links)) return 1;
  for (const auto& now : links)
    if (now.rxChannelId == link.rxChannelId && now.isRaw && now.ip == link.ip) {
      std::cout << "receive channel " << now.rxChannelId << ": stream " << now.ip << ", "
                << (now.encoding == 1 ? "L16" : "L24") << ", session " << now.sessionId << '\n';
      return 0;
    }
  std::cerr << "the subscription was accepted, but is not in effect\n";
  return 1;
}
