// List the network interfaces, and find those with a role: control, Dante primary and secondary.
//
// A role is an interface name in an environment variable, resolved once, by the first call of the
// process. If that fails, the role stays unknown until the process is restarted: see
// wait_for_daemons.cc. GetTarvoInterfaceName prints an error line for an interface without a role.
#include <iostream>
#include <string>
#include <vector>

#include "NetworkgRPC.h"

namespace {

void Show(const std::string& title, const NetworkgRPC::InterfaceInfo& it) {
  std::cout << title << ": " << (it.mode == 1 ? "static " : "dynamic ")
            << (it.ip.empty() ? "no address" : it.ip + " netmask " + it.netmask)
            << (it.active ? ", in use" : ", stored") << ", MAC " << it.mac << std::endl;
}

}  // namespace

int main() {
  // The functions append: use an empty vector for each call.
  std::vector<NetworkgRPC::InterfaceInfo> all;
  std::vector<NetworkgRPC::InterfaceInfo> dante;
  std::vector<NetworkgRPC::InterfaceInfo> control;
  // An empty list with the result true may also be a failed request, see NetworkgRPC.h.
  if (!NetworkgRPC::GetAllIPv4(all) || all.empty()) return 1;
  for (const auto& interface : all) {
    std::string label;
    const bool has_role = NetworkgRPC::GetTarvoInterfaceName(interface.id, label);
    Show(interface.name + " (" + (has_role ? label : "no role") + ")", interface);
  }

  // One record, or two in the switch mode with a secondary port; without names and ids.
  if (!NetworkgRPC::GetDanteInterfacesInfo(dante)) return 1;
  for (const auto& interface : dante) Show("Dante", interface);

  // False without an error line: the role is unknown.
  if (!NetworkgRPC::GetControlInterfacesInfo(control)) return 1;
  Show("control", control.front());

  std::string mac;
  if (!NetworkgRPC::GetMACAddress(all.front().name, mac)) return 1;
  std::cout << "MAC address of " << all.front().name << ": " << mac << '\n';
}
