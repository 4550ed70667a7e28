// The Python module networkgrpc.network: the functions of NetworkgRPC.
#include "NetworkgRPC.h"

#include "python/call.h"

namespace {

using python::Field;
using InterfaceInfo = NetworkgRPC::InterfaceInfo;
using SwitchMode = NetworkgRPC::SwitchMode;
using Argument = pybind11::arg;

void DefineRecords(pybind11::module_& module) {
  python::Define<InterfaceInfo>(
      module, "InterfaceInfo", "One network interface with its IPv4 addressing.",
      Field("mode", &InterfaceInfo::mode), Field("name", &InterfaceInfo::name),
      Field("ip", &InterfaceInfo::ip), Field("netmask", &InterfaceInfo::netmask),
      Field("gateway", &InterfaceInfo::gateway), Field("mac", &InterfaceInfo::mac),
      Field("dns", &InterfaceInfo::dns), Field("active", &InterfaceInfo::active),
      Field("id", &InterfaceInfo::id));
  python::Define<SwitchMode>(module, "SwitchMode",
                             "A switch mode: one way to use the device's network ports.",
                             Field("id", &SwitchMode::id), Field("name", &SwitchMode::name));
}

}  // namespace

PYBIND11_MODULE(network, module) {
  module.doc() =
      "The host's networking: interfaces, IPv4 addresses, switch mode, host name, NTP, DNS.";
  DefineRecords(module);
  python::Functions(module)
      .Reads("get_dante_interfaces_info", &NetworkgRPC::GetDanteInterfacesInfo,
             "Return the Dante primary interface and, in switch mode 1, the secondary.")
      .Reads("get_control_interfaces_info", &NetworkgRPC::GetControlInterfacesInfo,
             "Return the control interface in a list.")
      .Reads("get_all_ipv4", &NetworkgRPC::GetAllIPv4,
             "Return all interfaces with their addresses.")
      .Reads("get_mac_address", &NetworkgRPC::GetMACAddress, Argument("name"),
             "Return the MAC address of the first interface with this name.")
      .Reads("get_tarvo_interface_name", &NetworkgRPC::GetTarvoInterfaceName, Argument("id"),
             "Return the product's fixed label of an interface by its role.")
      .Changes("set_dante_ip", &NetworkgRPC::SetDanteIP,
               "Store the addressing of a Dante interface.", Argument("info"),
               Argument("secondary"), Argument("reload"))
      .Changes("set_control_ip", &NetworkgRPC::SetControlIP,
               "Store the addressing of the control interface.", Argument("info"),
               Argument("reload"))
      .Changes("set_generic_ip", &NetworkgRPC::SetGenericIP,
               "Store the addressing of any interface.", Argument("id"), Argument("info"),
               Argument("reload"))
      .Reads("get_switch_modes", &NetworkgRPC::GetSwitchModes, "Return all switch modes.")
      .Reads("get_configured_switch_mode", &NetworkgRPC::GetConfiguredSwitchMode,
             "Return the stored switch mode.")
      .Reads("get_current_switch_mode", &NetworkgRPC::GetCurrentSwitchMode,
             "Return the switch mode in effect.")
      .Changes("set_switch_mode", &NetworkgRPC::SetSwitchMode,
               "Select a switch mode; the argument is its id plus one.", Argument("mode"))
      .Reads("get_hostname", &NetworkgRPC::GetHostname, "Return the host name.")
      .Changes("set_hostname", &NetworkgRPC::SetHostname, "Set the host name.",
               Argument("hostname"))
      .Reads("get_ntp_server", &NetworkgRPC::GetNTPServer, "Return the first NTP server.")
      .Changes("set_ntp_server", &NetworkgRPC::SetNTPServer,
               "Store one NTP server, which replaces the list.", Argument("server"),
               Argument("reload"))
      .Reads("get_current_dns", &NetworkgRPC::GetCurrentDNS, "Return the first DNS server in use.")
      .Reads("get_default_gateway", &NetworkgRPC::GetDefaultGateway, "Return the default gateway.")
      .Changes("factory_reset", &NetworkgRPC::FactoryReset,
               "Reset the network settings to factory defaults.");
}
