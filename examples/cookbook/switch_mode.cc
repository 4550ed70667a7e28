// Select a switch mode by its name and follow the switch until the mode is in effect.
//
// usage: switch_mode NAME
//
// The offset: SetSwitchMode expects the id that the getters report PLUS ONE. The mode is stored
// first; the daemon decides when it is in effect, here after a reload. In the mode with id 1 the
// secondary Dante interface is in use, too.
#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"

namespace {

bool WaitUntilInEffect(int id) {
  for (int attempt = 0; attempt < 20; ++attempt) {
    NetworkgRPC::SwitchMode mode;
    // A call may fail while the ports are reconfigured.
    if (NetworkgRPC::GetCurrentSwitchMode(mode) && mode.id == id) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<NetworkgRPC::SwitchMode> modes;
  if (argc != 2 || !NetworkgRPC::GetSwitchModes(modes)) return 1;
  for (const auto& wanted : modes) {
    if (wanted.name != argv[1]) continue;
    NetworkgRPC::SwitchMode stored;
    if (!NetworkgRPC::SetSwitchMode(wanted.id + 1) ||
        !NetworkgRPC::GetConfiguredSwitchMode(stored) || stored.id != wanted.id)
      return 1;
    std::cout << "stored: " << stored.id << ' ' << stored.name << std::endl;
    if (!DantegRPC::Reboot() || !WaitUntilInEffect(wanted.id)) return 1;
    std::vector<NetworkgRPC::InterfaceInfo> dante;
    if (!NetworkgRPC::GetDanteInterfacesInfo(dante)) return 1;
    std::cout << "in effect, Dante interfaces in use: " << dante.size() << '\n';
    return 0;
  }
  std::cerr << "no such mode; there are:";
  for (const auto& mode : modes) std::cerr << " '" << mode.name << '\'';
  std::cerr << '\n';
  return 1;
}
