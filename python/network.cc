// The Python module networkgrpc.network: the functions of NetworkgRPC.
#include "NetworkgRPC.h"
#include "NetworkgRPC_version.h"

#include "python/call.h"

namespace {

using python::Field;
using InterfaceInfo = NetworkgRPC::InterfaceInfo;
using SwitchMode = NetworkgRPC::SwitchMode;
using Argument = pybind11::arg;

void DefineRecords(pybind11::module_& module) {
  python::Define<InterfaceInfo>(
      module, "InterfaceInfo", Field("mode", &InterfaceInfo::mode),
      Field("name", &InterfaceInfo::name), Field("ip", &InterfaceInfo::ip),
      Field("netmask", &InterfaceInfo::netmask), Field("gateway", &InterfaceInfo::gateway),
      Field("mac", &InterfaceInfo::mac), Field("dns", &InterfaceInfo::dns),
      Field("active", &InterfaceInfo::active), Field("id", &InterfaceInfo::id));
  python::Define<SwitchMode>(module, "SwitchMode", Field("id", &SwitchMode::id),
                             Field("name", &SwitchMode::name));
}

}  // namespace

PYBIND11_MODULE(network, module) {
  module.doc() = python::Doc("");
  module.attr("__version__") = NETWORKGRPC_VERSION;
  DefineRecords(module);
  python::Functions(module)
      .Reads("get_dante_interfaces_info", &NetworkgRPC::GetDanteInterfacesInfo)
      .Reads("get_control_interfaces_info", &NetworkgRPC::GetControlInterfacesInfo)
      .Reads("get_all_ipv4", &NetworkgRPC::GetAllIPv4)
      .Reads("get_mac_address", &NetworkgRPC::GetMACAddress, Argument("name"))
      .Reads("get_tarvo_interface_name", &NetworkgRPC::GetTarvoInterfaceName, Argument("id"))
      .Changes("set_dante_ip", &NetworkgRPC::SetDanteIP, Argument("info"), Argument("secondary"),
               Argument("reload"))
      .Changes("set_control_ip", &NetworkgRPC::SetControlIP, Argument("info"), Argument("reload"))
      .Changes("set_generic_ip", &NetworkgRPC::SetGenericIP, Argument("id"), Argument("info"),
               Argument("reload"))
      .Reads("get_switch_modes", &NetworkgRPC::GetSwitchModes)
      .Reads("get_configured_switch_mode", &NetworkgRPC::GetConfiguredSwitchMode)
      .Reads("get_current_switch_mode", &NetworkgRPC::GetCurrentSwitchMode)
      .Changes("set_switch_mode", &NetworkgRPC::SetSwitchMode, Argument("mode"))
      .Reads("get_hostname", &NetworkgRPC::GetHostname)
      .Changes("set_hostname", &NetworkgRPC::SetHostname, Argument("hostname"))
      .Reads("get_ntp_server", &NetworkgRPC::GetNTPServer)
      .Changes("set_ntp_server", &NetworkgRPC::SetNTPServer, Argument("server"), Argument("reload"))
      .Reads("get_current_dns", &NetworkgRPC::GetCurrentDNS)
      .Reads("get_default_gateway", &NetworkgRPC::GetDefaultGateway)
      .Changes("factory_reset", &NetworkgRPC::FactoryReset);
}
