/// @file
/// The host's networking in plain records. Includes nothing but the standard library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Reads and changes the device's host networking: interfaces and their IPv4 addresses, switch
/// mode, host name, NTP, DNS, default gateway, factory reset.
///
/// Every function calls the network-manager daemon, at the endpoint in the environment variable
/// network_manager_url (default "localhost:50007").
///
/// @code
/// std::vector<NetworkgRPC::InterfaceInfo> control;
/// if (!NetworkgRPC::GetControlInterfacesInfo(control)) return 1;
/// std::cout << "ready, control interface " << control.front().ip << '\n';
/// @endcode
///
/// @par Lifetime
/// Nothing has to be created or destroyed. The first call creates a connection that lasts until the
/// process exits. It also makes one RPC, GetAvailableInterfaces, to find the ids and MAC addresses
/// of three role interfaces by their names: Dante primary (dante_primary_interface_env, default
/// "lan0"), Dante secondary (dante_secondary_interface_env, default "lan2") and control
/// (control_interface_env, default "lan1"). A role is unresolved if this RPC fails, if no interface
/// has the name, or if the variable is set to an empty string: its id is then -1 and its MAC
/// address empty for the life of the process, and nothing is printed.
///
/// @par Threads
/// All functions are thread-safe. Join the threads that call them before the process exits.
///
/// @par Blocking
/// A function makes the RPCs listed in its comment one after the other and returns when the last
/// has ended. RPCs have no deadline:
/// - If the daemon is absent or dies, an RPC fails within milliseconds.
/// - If the daemon freezes (stops answering keepalive pings) before an RPC or within its first
///   20 s, the RPC fails about 20 s later. A later freeze is not detected.
/// - If the daemon keeps running but never replies, the RPC lasts until the daemon ends.
///
/// @par Results
/// A function returns `true` on success. On failure, unless its comment says otherwise, it returns
/// `false`, leaves its outputs unchanged and prints to standard error one line that starts with
/// `libNetworkgRPC:`. The result does not distinguish an unreachable daemon, an RPC error and a
/// rejected request. After a failed change, read the setting back: the daemon may have applied it.
///
/// @par Lists
/// A function that fills a vector appends to it and never clears it.
///
/// @par Exceptions
/// No std::exception leaves a function. If one is caught, std::bad_alloc for example, the function
/// prints an error line and returns `false`; list records that were appended before stay in the
/// vector. Exceptions of other types pass to the caller.
///
/// @par Strings
/// Strings must be UTF-8. They are passed unchanged, whatever their length; only the daemon
/// validates them.
class __attribute__((visibility("default"))) NetworkgRPC {
 public:
  /// There are no objects of this class: all its functions are static.
  NetworkgRPC() = delete;

  /// One network interface with its IPv4 addressing.
  ///
  /// @code
  /// NetworkgRPC::InterfaceInfo after;
  /// after.mode = 1;
  /// after.ip = argv[1];
  /// after.netmask = argv[2];
  /// @endcode
  struct InterfaceInfo {
    /// Addressing mode, 1: static, 0: dynamic. The getters return 1 if the stored mode is static,
    /// otherwise 0. The setters treat every value but 1 as dynamic.
    std::int32_t mode = 0;
    /// System name, "lan0" for example. Filled by GetAllIPv4 only; ignored by the setters.
    std::string name;
    /// Dotted IPv4 address; empty if there is none.
    std::string ip;
    /// Dotted IPv4 netmask; empty if there is none.
    std::string netmask;
    /// Dotted IPv4 address of the default gateway; empty for none. Read by the setters; never
    /// filled by the getters.
    std::string gateway;
    /// MAC address exactly as the daemon sent it. Ignored by the setters.
    std::string mac;
    /// IP address of one DNS server; empty for none. Read by the setters; never filled by the
    /// getters.
    std::string dns;
    /// `true` if the daemon reports that the addresses are in use. Ignored by the setters.
    bool active = false;
    /// Interface id. Filled by GetAllIPv4 only, otherwise 0; ignored by the setters.
    std::int32_t id = 0;
  };

  /// A switch mode: one way to use the device's network ports.
  ///
  /// @code
  /// NetworkgRPC::SwitchMode stored;
  /// if (!NetworkgRPC::SetSwitchMode(wanted.id + 1) ||
  ///     !NetworkgRPC::GetConfiguredSwitchMode(stored) || stored.id != wanted.id)
  ///   return 1;
  /// @endcode
  struct SwitchMode {
    /// Id as the daemon reports it. SetSwitchMode expects this id plus one.
    std::int32_t id = 0;
    /// Display name as the daemon reports it.
    std::string name;
  };

  /// @name Interfaces
  /// @{

  /// Appends the Dante primary interface and, if the switch mode in effect has id 1, the Dante
  /// secondary interface. Unresolved interfaces are skipped. `ip` and `netmask` are the addresses
  /// in use if `active` is `true`, otherwise those of a stored static configuration, otherwise
  /// empty. An interface that is missing from a reply is appended with empty addresses and an empty
  /// MAC address. `name`, `gateway`, `dns` and `id` are not filled.
  ///
  /// RPCs: GetSwitchModeStatus, GetNetworkConfig, GetNetworkStatus. Blocks without a deadline,
  /// thread-safe (see NetworkgRPC).
  /// @param[in,out] out  Zero to two records are appended. Unchanged on failure, except that a
  ///   record appended before a caught exception stays.
  /// @return
  ///   - `true`: the records were appended.
  ///   - `false`: the configuration or the status request failed (an error line is printed).
  ///   - `false`: one of them returned an empty list (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  ///   - `false`: the switch mode cannot be read (nothing is printed).
  static bool GetDanteInterfacesInfo(std::vector<InterfaceInfo>& out);

  /// Appends the control interface. `ip` and `netmask` are the addresses in use if `active` is
  /// `true`, otherwise those of a stored static configuration, otherwise empty. If the interface is
  /// missing from a reply, the record has empty addresses and an empty MAC address. `name`,
  /// `gateway`, `dns` and `id` are not filled.
  ///
  /// RPCs: GetNetworkConfig, GetNetworkStatus. Blocks without a deadline, thread-safe (see
  /// NetworkgRPC).
  /// @param[in,out] out  One record is appended. Unchanged on failure.
  /// @return
  ///   - `true`: the record was appended.
  ///   - `false`: the configuration or the status request failed (an error line is printed).
  ///   - `false`: one of them returned an empty list (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  ///   - `false`: the control interface is unresolved (no RPC is made, nothing is printed).
  static bool GetControlInterfacesInfo(std::vector<InterfaceInfo>& out);

  /// Appends every interface that the daemon lists, in its order, with name, MAC address and id.
  /// `ip` and `netmask` come from the status, even if `active` is `false`; if the status has no
  /// address, from a stored static configuration; otherwise they are empty. An interface that is
  /// missing from the configuration reply has empty addresses. `gateway` and `dns` are not filled.
  ///
  /// RPCs: GetAvailableInterfaces, GetNetworkConfig, GetNetworkStatus. Blocks without a deadline,
  /// thread-safe (see NetworkgRPC).
  /// @param[in,out] out  One record per interface is appended. Unchanged on failure, except that
  ///   records appended before a caught exception stay.
  /// @return
  ///   - `true`: the records were appended.
  ///   - `true`: nothing was appended: the daemon lists no interface (nothing is printed).
  ///   - `true`: nothing was appended: the configuration or the status request failed (nothing is
  ///     printed).
  ///   - `false`: the list request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetAllIPv4(std::vector<InterfaceInfo>& out);

  /// Finds the MAC address of the first interface with the given name.
  ///
  /// RPC: GetAvailableInterfaces. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[in] name  System name, "lan0" for example; case-sensitive.
  /// @param[out] mac  MAC address exactly as the daemon sent it. Unchanged on failure.
  /// @return
  ///   - `true`: `mac` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  ///   - `false`: no interface has this name (an error line that ends in "interface not found" is
  ///     printed).
  static bool GetMACAddress(const std::string& name, std::string& mac);

  /// Finds the product's fixed label of an interface by its role, compared in this order: control
  /// "eth0", Dante primary "dante-0", Dante secondary "dante-1". Unresolved roles have id -1, so -1
  /// matches the first unresolved role.
  ///
  /// Makes no RPC, except GetAvailableInterfaces if the process has not called this daemon before.
  /// Thread-safe (see NetworkgRPC).
  /// @param[in] id  Interface id.
  /// @param[out] label  The label. Unchanged on failure.
  /// @return
  ///   - `true`: `label` was set.
  ///   - `false`: no role has this id (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetTarvoInterfaceName(int id, std::string& label);

  /// @}

  /// @name Interface addresses
  /// @{

  /// Stores the addressing of one of the two Dante interfaces. Addressing is static if info.mode is
  /// 1 and info.ip and info.netmask are not empty; info.gateway and info.dns are stored with it if
  /// they are not empty. In every other case, an incomplete static address included, addressing
  /// becomes dynamic and no address is sent.
  ///
  /// RPCs: SetNetworkConfig; if `reload` is `true` then ReloadNetworkConfig, even if the first RPC
  /// failed. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[in] info  Only `mode`, `ip`, `netmask`, `gateway` and `dns` are read.
  /// @param[in] secondary  0: Dante primary; any other value: Dante secondary.
  /// @param[in] reload  `true`: ask the daemon to apply the stored configuration. If that fails, an
  ///   error line is printed; the result does not change.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  ///   - `false`: the interface is unresolved (no RPC is made, nothing is printed).
  static bool SetDanteIP(const InterfaceInfo& info, int secondary, bool reload);

  /// Stores the addressing of the control interface. Addressing is static if info.mode is 1 and
  /// info.ip and info.netmask are not empty; info.gateway and info.dns are stored with it if they
  /// are not empty. In every other case, an incomplete static address included, addressing becomes
  /// dynamic and no address is sent.
  ///
  /// If the control interface is unresolved, the request carries interface id -1; rejecting it is
  /// up to the daemon.
  ///
  /// RPCs: SetNetworkConfig; if `reload` is `true` then ReloadNetworkConfig, even if the first RPC
  /// failed. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[in] info  Only `mode`, `ip`, `netmask`, `gateway` and `dns` are read.
  /// @param[in] reload  `true`: ask the daemon to apply the stored configuration. If that fails, an
  ///   error line is printed; the result does not change.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetControlIP(const InterfaceInfo& info, bool reload);

  /// Stores the addressing of any interface. Addressing is static if info.mode is 1 and info.ip and
  /// info.netmask are not empty; info.gateway and info.dns are stored with it if they are not
  /// empty. In every other case, an incomplete static address included, addressing becomes dynamic
  /// and no address is sent.
  ///
  /// RPCs: SetNetworkConfig; if `reload` is `true` then ReloadNetworkConfig, even if the first RPC
  /// failed. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[in] id  Interface id, sent without a check; info.id is ignored.
  /// @param[in] info  Only `mode`, `ip`, `netmask`, `gateway` and `dns` are read.
  /// @param[in] reload  `true`: ask the daemon to apply the stored configuration. If that fails, an
  ///   error line is printed; the result does not change.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetGenericIP(int id, const InterfaceInfo& info, bool reload);

  /// @}

  /// @name Switch modes
  /// @{

  /// Appends every switch mode that the device offers, in the daemon's order.
  ///
  /// RPC: GetAvailableSwitchModes. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[in,out] modes  One record per mode is appended. Unchanged on failure, except that
  ///   records appended before a caught exception stay.
  /// @return
  ///   - `true`: the records were appended.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetSwitchModes(std::vector<SwitchMode>& modes);

  /// Reads the stored switch mode.
  ///
  /// RPC: GetSwitchMode. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[out] mode  Id and name of the mode. Unchanged on failure.
  /// @return
  ///   - `true`: `mode` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetConfiguredSwitchMode(SwitchMode& mode);

  /// Reads the switch mode in effect.
  ///
  /// RPC: GetSwitchModeStatus. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[out] mode  Id and name of the mode. Unchanged on failure.
  /// @return
  ///   - `true`: `mode` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetCurrentSwitchMode(SwitchMode& mode);

  /// Selects a switch mode. Note the offset: SetSwitchMode(1) selects the mode that GetSwitchModes
  /// lists with id 0.
  ///
  /// RPC: SetSwitchMode. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[in] mode  One more than the id that the getters report; the range is not checked.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetSwitchMode(int mode);

  /// @}

  /// @name Host
  /// @{

  /// Reads the host name.
  ///
  /// RPC: GetHostname. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[out] hostname  The name; may be empty. Unchanged on failure.
  /// @return
  ///   - `true`: `hostname` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetHostname(std::string& hostname);

  /// Sets the host name.
  ///
  /// RPC: SetHostname. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[in] hostname  Sent unchanged, even if empty.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetHostname(const std::string& hostname);

  /// Reads the first NTP server of the stored list.
  ///
  /// RPC: GetNTPServer. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[out] server  Name or address. Unchanged on failure.
  /// @return
  ///   - `true`: `server` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  ///   - `false`: the list is empty (nothing is printed).
  static bool GetNTPServer(std::string& server);

  /// Stores one NTP server, which replaces the stored list.
  ///
  /// RPCs: SetNTPServer; if `reload` is `true` then ReloadNTPConfig, even if the first RPC failed.
  /// Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[in] server  Name or address, sent as one list entry, even if empty.
  /// @param[in] reload  `true`: ask the daemon to apply the stored configuration. If that fails, an
  ///   error line is printed; the result does not change.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetNTPServer(const std::string& server, bool reload);

  /// Reads the first DNS server in use.
  ///
  /// RPC: GetDNSList. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[out] dns  IP address. Unchanged on failure.
  /// @return
  ///   - `true`: `dns` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  ///   - `false`: no DNS server is in use (nothing is printed).
  static bool GetCurrentDNS(std::string& dns);

  /// Reads the host's default gateway.
  ///
  /// RPC: GetRouting. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @param[out] gateway  Dotted IPv4 address; may be empty. Unchanged on failure.
  /// @return
  ///   - `true`: `gateway` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetDefaultGateway(std::string& gateway);

  /// Resets the network settings to factory defaults.
  ///
  /// RPC: FactoryReset. Blocks without a deadline, thread-safe (see NetworkgRPC).
  /// @return
  ///   - `true`: the daemon confirmed the reset.
  ///   - `false`: the daemon rejected the reset (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool FactoryReset();

  /// @}
};
