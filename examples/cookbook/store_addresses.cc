// Store the addresses of several interfaces, then apply them with one reload.
//
// The calls with reload = false only store. The result of a call with reload = true is that of
// storing, too: a failed reload only prints a line. Reboot() reports the result of the reload. It
// applies everything that is stored, also by others, and interrupts the audio.
#include <iostream>
#include <string>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"

namespace {

NetworkgRPC::InterfaceInfo Static(const std::string& ip, const std::string& netmask) {
  NetworkgRPC::InterfaceInfo info;
  info.mode = 1;
  info.ip = ip;
  info.netmask = netmask;
  return info;
}

bool Show(const std::string& title) {
  std::vector<NetworkgRPC::InterfaceInfo> all;
  if (!NetworkgRPC::GetAllIPv4(all)) return false;
  std::cout << title;
  for (const auto& interface : all) std::cout << "  " << interface.name << ' ' << interface.ip;
  std::cout << std::endl;
  return true;
}

}  // namespace

int main() {
  std::vector<NetworkgRPC::InterfaceInfo> all;
  if (!NetworkgRPC::GetAllIPv4(all) || all.empty()) return 1;
  // Dante primary and secondary; for all other interfaces, ids of GetAllIPv4.
  if (!NetworkgRPC::SetDanteIP(Static("10.1.0.9", "255.255.0.0"), /*secondary=*/0, false) ||
      !NetworkgRPC::SetDanteIP(Static("10.2.0.9", "255.255.0.0"), /*secondary=*/1, false) ||
      !NetworkgRPC::SetGenericIP(all.back().id, Static("10.3.0.9", "255.255.0.0"), false))
    return 1;
  if (!Show("stored: ")) return 1;
  if (!DantegRPC::Reboot()) return 1;
  return Show("applied:") ? 0 : 1;
}
