// The module networkgrpc.network: the functions of NetworkgRPC.
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
  python::Define<SwitchMode>(module, "SwitchMode", "One way to use the device's network ports.",
                             Field("id", &SwitchMode::id), Field("name", &SwitchMode::name));
}

}  // namespace

PYBIND11_MODULE(network, module) {
  module.doc() =
      "The host's networking: interfaces and addresses, switch mode, host name, NTP, DNS.";
  DefineRecords(module);
  python::Functions(module)
      .Reads("get_dante_interfaces_info", &NetworkgRPC::GetDanteInterfacesInfo,
             "The Dante primary interface and, in switch mode 1, the secondary.")
      .Reads("get_control_interfaces_info", &NetworkgRPC::GetControlInterfacesInfo,
             "The control interface.")
      .Reads("get_all_ipv4", &NetworkgRPC::GetAllIPv4, "Every interface with its addresses.")
      .Reads("get_mac_address", &NetworkgRPC::GetMACAddress, Argument("name"),
             "The MAC address of the first interface with this name.")
      .Reads("get_tarvo_interface_name", &NetworkgRPC::GetTarvoInterfaceName, Argument("id"),
             "The product's name of the role that an interface has.")
      .Changes("set_dante_ip", &NetworkgRPC::SetDanteIP, "Configures a Dante interface.",
               Argument("info"), Argument("secondary"), Argument("reload"))
      .Changes("set_control_ip", &NetworkgRPC::SetControlIP, "Configures the control interface.",
               Argument("info"), Argument("reload"))
      .Changes("set_generic_ip", &NetworkgRPC::SetGenericIP, "Configures any interface.",
               Argument("id"), Argument("info"), Argument("reload"))
      .Reads("get_switch_modes", &NetworkgRPC::GetSwitchModes, "Every switch mode on offer.")
      .Reads("get_configured_switch_mode", &NetworkgRPC::GetConfiguredSwitchMode,
             "The stored switch mode.")
      .Reads("get_current_switch_mode", &NetworkgRPC::GetCurrentSwitchMode,
             "The switch mode in effect.")
      .Changes("set_switch_mode", &NetworkgRPC::SetSwitchMode,
               "Selects a switch mode, by one more than its id.", Argument("mode"))
      .Reads("get_hostname", &NetworkgRPC::GetHostname, "The host name.")
      .Changes("set_hostname", &NetworkgRPC::SetHostname, "Sets the host name.",
               Argument("hostname"))
      .Reads("get_ntp_server", &NetworkgRPC::GetNTPServer, "The first NTP server.")
      .Changes("set_ntp_server", &NetworkgRPC::SetNTPServer, "Stores one NTP server.",
               Argument("server"), Argument("reload"))
      .Reads("get_current_dns", &NetworkgRPC::GetCurrentDNS, "The first DNS server in use.")
      .Reads("get_default_gateway", &NetworkgRPC::GetDefaultGateway, "The default gateway.")
      .Changes("factory_reset", &NetworkgRPC::FactoryReset,
               "Resets the network settings to factory defaults.");
}
