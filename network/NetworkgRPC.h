// Reads and changes the device's host networking: interfaces and their IPv4
// addresses, switch mode, host name, NTP, DNS, default gateway, factory reset.
//
// Every function asks the network-manager daemon, at the endpoint that the
// environment variable network_manager_url names (default "localhost:50007").
//
// Lifetime: nothing to create or to destroy. The first call builds a connection
//   that lasts until the process exits; it also resolves, once for the life of
//   the process, which interfaces have the three roles Dante primary, Dante
//   secondary and control, by the names in dante_primary_interface_env
//   ("lan0"), dante_secondary_interface_env ("lan2") and control_interface_env
//   ("lan1"). When the daemon cannot be asked at that moment, the roles stay
//   unresolved: their ids are then -1 and their MAC addresses empty.
// Threads: every function may be called from several threads at once. Join the
//   threads that call before the process exits.
// Blocking: a function blocks while its calls last. An absent or dying daemon
//   ends a call in milliseconds and a frozen one when the connection's
//   keepalive notices, but there is no deadline: a daemon that accepts a call
//   and never answers it holds the caller.
// Results: true means done. On false the outputs are as they were, unless said
//   otherwise, and one line beginning "libNetworkgRPC: " has been written to
//   standard error, unless a function is said to fail silently. A daemon that
//   cannot be reached, one that answers with an error and one that refuses are
//   not told apart.
// Lists: a function that fills a vector appends to it and never clears it.
// Exceptions: no std::exception leaves a function; a caught one, such as
//   std::bad_alloc, prints one line and gives false.
// Texts: what is passed in must be UTF-8. Nothing is validated, trimmed or
//   rewritten on this side; the daemon judges it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class __attribute__((visibility("default"))) NetworkgRPC {
 public:
  NetworkgRPC() = delete;

  /// One network interface with its IPv4 addressing.
  struct InterfaceInfo {
    /// 1: static, 0: dynamic. The getters give 1 when the stored mode is static
    /// and 0 for every other; the setters take every other value for dynamic.
    std::int32_t mode = 0;
    /// The system's name, such as "lan0". Filled by GetAllIPv4 only.
    std::string name;
    /// Dotted IPv4 address, empty when there is none.
    std::string ip;
    /// Dotted IPv4 netmask, empty when there is none.
    std::string netmask;
    /// Dotted IPv4 address of the default gateway. Read by the setters, never filled.
    std::string gateway;
    /// MAC address text, as the daemon forms it.
    std::string mac;
    /// One DNS server's address. Read by the setters, never filled.
    std::string dns;
    /// True when the daemon reports the addresses as the ones in use.
    bool active = false;
    /// The interface's number. Filled by GetAllIPv4 only, 0 otherwise.
    std::int32_t id = 0;
  };

  /// One way to use the device's network ports.
  struct SwitchMode {
    /// The mode's number as the daemon reports it.
    std::int32_t id = 0;
    /// Display name.
    std::string name;
  };

  // --- Interfaces -----------------------------------------------------------

  /// Appends the Dante primary interface and, when the switch mode in effect
  /// has id 1, the Dante secondary interface. An unresolved role is left out;
  /// an interface that the daemon's answer lacks is appended without addresses
  /// and without MAC. `name`, `gateway`, `dns` and `id` are not filled.
  /// RPCs: GetSwitchModeStatus, GetNetworkConfig, GetNetworkStatus.
  /// Prints a line when configuration or status cannot be had or is empty;
  /// silent when the switch mode cannot be read.
  static bool GetDanteInterfacesInfo(std::vector<InterfaceInfo>& out);

  /// Appends the control interface, in the manner of GetDanteInterfacesInfo.
  /// RPCs: GetNetworkConfig, GetNetworkStatus.
  /// Prints a line when configuration or status cannot be had or is empty;
  /// silent, and without a call, when the control interface is unresolved.
  static bool GetControlInterfacesInfo(std::vector<InterfaceInfo>& out);

  /// Appends every interface that the daemon reports, in its order, with name,
  /// MAC, id and addresses: those of the status, or else those of a stored
  /// static configuration. Gives true and appends nothing, silently, when the
  /// list is empty or when configuration or status cannot be had.
  /// RPCs: GetAvailableInterfaces, GetNetworkConfig, GetNetworkStatus.
  /// Prints a line when the list cannot be had.
  static bool GetAllIPv4(std::vector<InterfaceInfo>& out);

  /// Sets `mac` to the MAC address of the first interface whose name equals
  /// `name`, letter case included.
  /// RPC: GetAvailableInterfaces. Prints a line when the call fails, another
  /// when there is no such interface.
  static bool GetMACAddress(const std::string& name, std::string& mac);

  /// Sets `label` to the product's fixed name of the role that the interface
  /// with this id has: "eth0" (control), "dante-0" (Dante primary) or "dante-1"
  /// (Dante secondary), compared in this order. Since unresolved roles have the
  /// id -1, asking for -1 finds the first unresolved role.
  /// No call. Prints a line when no role has the id.
  static bool GetTarvoInterfaceName(int id, std::string& label);

  // --- Interface addresses --------------------------------------------------
  //
  // Stores static addressing when info.mode is 1 and both ip and netmask are
  // given, with gateway and dns where they are not empty; in every other case,
  // incomplete static addresses included, dynamic addressing. The other fields
  // of `info` are ignored. With `reload` the daemon is then asked to apply the
  // stored configuration, whatever the first call gave; a reload that fails
  // prints a line and does not change the result.
  // RPCs: SetNetworkConfig, then ReloadNetworkConfig with `reload`. Each prints
  // a line when the daemon fails or refuses.

  /// Configures the Dante secondary interface when `secondary` is not 0, else
  /// the Dante primary. False, silently and without a call, when that role is
  /// unresolved.
  static bool SetDanteIP(const InterfaceInfo& info, int secondary, bool reload);

  /// Configures the control interface. An unresolved one is asked for as
  /// interface -1, which is the daemon's to refuse.
  static bool SetControlIP(const InterfaceInfo& info, bool reload);

  /// Configures the interface with this id, whatever it is; `info.id` is ignored.
  static bool SetGenericIP(int id, const InterfaceInfo& info, bool reload);

  // --- Switch modes ---------------------------------------------------------

  /// Appends every switch mode that the device offers, in the daemon's order.
  /// RPC: GetAvailableSwitchModes. Prints a line on failure.
  static bool GetSwitchModes(std::vector<SwitchMode>& modes);

  /// Sets `mode` to the stored switch mode.
  /// RPC: GetSwitchMode. Prints a line on failure.
  static bool GetConfiguredSwitchMode(SwitchMode& mode);

  /// Sets `mode` to the switch mode in effect.
  /// RPC: GetSwitchModeStatus. Prints a line on failure.
  static bool GetCurrentSwitchMode(SwitchMode& mode);

  /// Selects a switch mode. Note the offset: `mode` is one more than the id
  /// that the getters report, so the mode listed with id 0 takes
  /// SetSwitchMode(1). The range is not checked.
  /// RPC: SetSwitchMode. Prints a line when the daemon fails or refuses.
  static bool SetSwitchMode(int mode);

  // --- Host -----------------------------------------------------------------

  /// Sets `hostname` to the host name, which may be empty.
  /// RPC: GetHostname. Prints a line on failure.
  static bool GetHostname(std::string& hostname);

  /// Sets the host name, exactly as given.
  /// RPC: SetHostname. Prints a line when the daemon fails or refuses.
  static bool SetHostname(const std::string& hostname);

  /// Sets `server` to the first NTP server. False, silently, when none is
  /// configured.
  /// RPC: GetNTPServer. Prints a line when the call fails.
  static bool GetNTPServer(std::string& server);

  /// Stores `server`, also an empty one, as the only NTP server. With `reload`
  /// the daemon is then asked to apply the stored NTP configuration, whatever
  /// the first call gave; a reload that fails prints a line and does not change
  /// the result.
  /// RPCs: SetNTPServer, then ReloadNTPConfig with `reload`. Each prints a line
  /// when the daemon fails or refuses.
  static bool SetNTPServer(const std::string& server, bool reload);

  /// Sets `dns` to the first DNS server in use. False, silently, when there is
  /// none.
  /// RPC: GetDNSList. Prints a line when the call fails.
  static bool GetCurrentDNS(std::string& dns);

  /// Sets `gateway` to the host's default gateway, which may be empty.
  /// RPC: GetRouting. Prints a line on failure.
  static bool GetDefaultGateway(std::string& gateway);

  /// Resets the network settings to factory defaults.
  /// RPC: FactoryReset. Prints a line when the daemon fails or refuses.
  static bool FactoryReset();
};
