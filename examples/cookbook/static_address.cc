// Give the control interface a static address without locking yourself out.
//
// usage: static_address IP NETMASK SECONDS     keeps the address if a line "y" is read in time
//
// An incomplete static address would be stored as dynamic addressing, so it is checked before. The
// getters report neither gateway nor DNS server nor the two special dynamic modes, so this program
// can go back to ordinary dynamic addressing only, and not at all if it is killed. The checkpoints
// of `networkgrpc` do both: see static_address.sh.
#include <arpa/inet.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "NetworkgRPC.h"

namespace {

bool IsAddress(const std::string& string) {
  in_addr address{};
  return inet_pton(AF_INET, string.c_str(), &address) == 1;
}

bool Confirmed(int seconds) {
  std::cout << "keep the new address? [y]" << std::endl;
  pollfd input{STDIN_FILENO, POLLIN, 0};
  std::string answer;
  return poll(&input, 1, seconds * 1000) == 1 && std::getline(std::cin, answer) && answer == "y";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4 || !IsAddress(argv[1]) || !IsAddress(argv[2])) return 2;
  // A remote terminal ends with its connection; the way back must not end with it.
  std::signal(SIGHUP, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);

  std::vector<NetworkgRPC::InterfaceInfo> before;
  if (!NetworkgRPC::GetControlInterfacesInfo(before)) return 1;
  if (before.front().mode == 1) {
    std::cerr << "a static address is stored, which could not be restored exactly\n";
    return 1;
  }
  NetworkgRPC::InterfaceInfo after;
  after.mode = 1;
  after.ip = argv[1];
  after.netmask = argv[2];
  // The result is that of storing it. The answer below is what shows whether the address works.
  if (NetworkgRPC::SetControlIP(after, /*reload=*/true) && Confirmed(std::atoi(argv[3]))) return 0;
  const bool restored = NetworkgRPC::SetControlIP(NetworkgRPC::InterfaceInfo(), /*reload=*/true);
  std::cout << (restored ? "dynamic addressing restored\n" : "NOT restored\n");
  return 1;
}
