/// @file
/// The host's networking in plain records; needs nothing but the standard library.

/// @class NetworkgRPC
/// Reads and changes the device's host networking: interfaces and their IPv4
/// addresses, switch mode, host name, NTP, DNS, default gateway, factory reset.
///
/// Every function asks the network-manager daemon, at the endpoint that the
/// environment variable network_manager_url names (default "localhost:50007").
///
/// @par Lifetime
/// Nothing to create or to destroy. The first call builds a connection that
/// lasts until the process exits; it also makes one RPC, GetAvailableInterfaces,
/// to resolve, once for the life of the process, which interfaces have the three
/// roles Dante primary, Dante secondary and control, by the names in
/// dante_primary_interface_env ("lan0"), dante_secondary_interface_env ("lan2")
/// and control_interface_env ("lan1"). When the daemon cannot be asked at that
/// moment, the roles stay unresolved: their ids are then -1 and their MAC
/// addresses empty.
///
/// @par Threads
/// Every function may be called from several threads at once. Join the threads
/// that call before the process exits.
///
/// @par Blocking
/// A function makes the RPCs that its description names, one after the other,
/// and blocks while they last. An RPC ends in milliseconds when the daemon is
/// absent or dies, and 20 s after the daemon has frozen, when the connection's
/// keepalive notices; later than 20 s into an RPC it no longer does. There is no
/// deadline: a daemon that accepts a call and never answers it holds the caller
/// until the daemon ends.
///
/// @par Results
/// True means done. On false the outputs are as they were, unless said
/// otherwise, and one line beginning "libNetworkgRPC: " has been written to
/// standard error, unless a function is said to fail silently. A daemon that
/// cannot be reached, one that answers with an error and one that refuses are
/// not told apart.
///
/// @par Lists
/// A function that fills a vector appends to it and never clears it.
///
/// @par Exceptions
/// No std::exception leaves a function; a caught one, such as std::bad_alloc,
/// prints one line and gives false.
///
/// @par Texts
/// What is passed in must be UTF-8. Nothing is validated, trimmed or rewritten
/// on this side, and no length is too long for it; the daemon judges it.
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

  /// @name Interfaces
  /// Threads, blocking and results: as for all functions of NetworkgRPC.
  /// @{

  /// Appends the Dante primary interface and, when the switch mode in effect
  /// has id 1, the Dante secondary interface. An unresolved role is left out;
  /// an interface that the daemon's answer lacks is appended without addresses
  /// and without MAC. `name`, `gateway`, `dns` and `id` are not filled.
  /// RPCs: GetSwitchModeStatus, GetNetworkConfig, GetNetworkStatus.
  /// @param[in,out] out  takes none to two more records; unchanged on false
  /// @return false with a line when configuration or status cannot be had or is
  ///   empty, silently when the switch mode cannot be read
  static bool GetDanteInterfacesInfo(std::vector<InterfaceInfo>& out);

  /// Appends the control interface, in the manner of GetDanteInterfacesInfo.
  /// RPCs: GetNetworkConfig, GetNetworkStatus.
  /// @param[in,out] out  takes one more record; unchanged on false
  /// @return false with a line when configuration or status cannot be had or is
  ///   empty, silently and without an RPC when the control interface is unresolved
  static bool GetControlInterfacesInfo(std::vector<InterfaceInfo>& out);

  /// Appends every interface that the daemon reports, in its order, with name,
  /// MAC, id and addresses: those of the status, or else those of a stored
  /// static configuration.
  /// RPCs: GetAvailableInterfaces, GetNetworkConfig, GetNetworkStatus.
  /// @param[in,out] out  takes one more record for each interface; unchanged on false
  /// @return false with a line when the list cannot be had; true, silently and
  ///   with nothing appended, when the list is empty and when configuration or
  ///   status cannot be had
  static bool GetAllIPv4(std::vector<InterfaceInfo>& out);

  /// Finds the MAC address of the first interface with a name.
  /// RPC: GetAvailableInterfaces.
  /// @param[in] name  the system's name, such as "lan0"; letter case counts
  /// @param[out] mac  the text as the daemon forms it; unchanged on false
  /// @return false with a line when the call fails, with another when there is no
  ///   such interface
  static bool GetMACAddress(const std::string& name, std::string& mac);

  /// Finds the product's fixed name of the role that an interface has: "eth0"
  /// (control), "dante-0" (Dante primary) or "dante-1" (Dante secondary),
  /// compared in this order. Since unresolved roles have the id -1, asking for
  /// -1 finds the first unresolved role. No RPC.
  /// @param[in] id  the interface's number
  /// @param[out] label  the name; unchanged on false
  /// @return false with a line when no role has the id
  static bool GetTarvoInterfaceName(int id, std::string& label);

  /// @}

  /// @name Interface addresses
  /// Stores static addressing when info.mode is 1 and both ip and netmask are
  /// given, with gateway and dns where they are not empty; in every other case,
  /// incomplete static addresses included, dynamic addressing. The other fields
  /// of `info` are ignored. With `reload` the daemon is then asked to apply the
  /// stored configuration, whatever the first RPC gave; a reload that fails
  /// prints a line and does not change the result.
  ///
  /// RPCs: SetNetworkConfig, then ReloadNetworkConfig with `reload`. Threads,
  /// blocking and results: as for all functions of NetworkgRPC.
  /// @{

  /// Configures one of the two Dante interfaces.
  /// RPCs: SetNetworkConfig, then ReloadNetworkConfig with `reload`.
  /// @param[in] info  mode, ip, netmask, gateway and dns, as told above
  /// @param[in] secondary  0: the Dante primary; every other: the Dante secondary
  /// @param[in] reload  whether to apply the configuration now
  /// @return false with a line when the daemon fails or refuses to store it,
  ///   silently and without an RPC when that role is unresolved
  static bool SetDanteIP(const InterfaceInfo& info, int secondary, bool reload);

  /// Configures the control interface. An unresolved one is asked for as
  /// interface -1, which is the daemon's to refuse.
  /// RPCs: SetNetworkConfig, then ReloadNetworkConfig with `reload`.
  /// @param[in] info  mode, ip, netmask, gateway and dns, as told above
  /// @param[in] reload  whether to apply the configuration now
  /// @return false with a line when the daemon fails or refuses to store it
  static bool SetControlIP(const InterfaceInfo& info, bool reload);

  /// Configures any interface.
  /// RPCs: SetNetworkConfig, then ReloadNetworkConfig with `reload`.
  /// @param[in] id  the interface's number, not checked; `info.id` is ignored
  /// @param[in] info  mode, ip, netmask, gateway and dns, as told above
  /// @param[in] reload  whether to apply the configuration now
  /// @return false with a line when the daemon fails or refuses to store it
  static bool SetGenericIP(int id, const InterfaceInfo& info, bool reload);

  /// @}

  /// @name Switch modes
  /// Threads, blocking and results: as for all functions of NetworkgRPC.
  /// @{

  /// Appends every switch mode that the device offers, in the daemon's order.
  /// RPC: GetAvailableSwitchModes.
  /// @param[in,out] modes  takes one more record for each mode; unchanged on false
  /// @return false with a line when the call fails
  static bool GetSwitchModes(std::vector<SwitchMode>& modes);

  /// Reads the stored switch mode.
  /// RPC: GetSwitchMode.
  /// @param[out] mode  its number and name; unchanged on false
  /// @return false with a line when the call fails
  static bool GetConfiguredSwitchMode(SwitchMode& mode);

  /// Reads the switch mode in effect.
  /// RPC: GetSwitchModeStatus.
  /// @param[out] mode  its number and name; unchanged on false
  /// @return false with a line when the call fails
  static bool GetCurrentSwitchMode(SwitchMode& mode);

  /// Selects a switch mode. Note the offset: the mode listed with id 0 takes
  /// SetSwitchMode(1).
  /// RPC: SetSwitchMode.
  /// @param[in] mode  one more than the id that the getters report; the range is
  ///   not checked
  /// @return false with a line when the daemon fails or refuses
  static bool SetSwitchMode(int mode);

  /// @}

  /// @name Host
  /// Threads, blocking and results: as for all functions of NetworkgRPC.
  /// @{

  /// Reads the host name.
  /// RPC: GetHostname.
  /// @param[out] hostname  the name, which may be empty; unchanged on false
  /// @return false with a line when the call fails
  static bool GetHostname(std::string& hostname);

  /// Sets the host name.
  /// RPC: SetHostname.
  /// @param[in] hostname  sent exactly as given, also when it is empty
  /// @return false with a line when the daemon fails or refuses
  static bool SetHostname(const std::string& hostname);

  /// Reads the first NTP server.
  /// RPC: GetNTPServer.
  /// @param[out] server  its name or address; unchanged on false
  /// @return false with a line when the call fails, silently when no server is
  ///   configured
  static bool GetNTPServer(std::string& server);

  /// Stores one NTP server as the only one. With `reload` the daemon is then
  /// asked to apply the stored NTP configuration, whatever the first RPC gave; a
  /// reload that fails prints a line and does not change the result.
  /// RPCs: SetNTPServer, then ReloadNTPConfig with `reload`.
  /// @param[in] server  name or address, stored as one entry, also when it is empty
  /// @param[in] reload  whether to apply the configuration now
  /// @return false with a line when the daemon fails or refuses to store it
  static bool SetNTPServer(const std::string& server, bool reload);

  /// Reads the first DNS server in use.
  /// RPC: GetDNSList.
  /// @param[out] dns  its address; unchanged on false
  /// @return false with a line when the call fails, silently when there is none
  static bool GetCurrentDNS(std::string& dns);

  /// Reads the host's default gateway.
  /// RPC: GetRouting.
  /// @param[out] gateway  its address, which may be empty; unchanged on false
  /// @return false with a line when the call fails
  static bool GetDefaultGateway(std::string& gateway);

  /// Resets the network settings to factory defaults.
  /// RPC: FactoryReset.
  /// @return false with a line when the daemon fails or refuses
  static bool FactoryReset();

  /// @}
};
