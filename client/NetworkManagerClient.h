/// @file
/// Wire messages and call status; each method makes one RPC. Needs the headers of gRPC and
/// protobuf-lite.
#pragma once

#include <grpcpp/support/status.h>

#include <cstdint>
#include <memory>
#include <string>

// The generated classes are exported by this library; a program that hides its own
// symbols must not hide them.
#pragma GCC visibility push(default)
#include "ostrevan/networkmanager.grpc.pb.h"
#pragma GCC visibility pop

/// The process-wide client of the network-manager daemon's gRPC service, for code that needs the
/// wire messages and the call status. Most applications use NetworkgRPC.h.
///
/// @code
/// ostrevan::networkmanager::Hostname host;
/// const grpc::Status read = NetworkManagerClient::GetInstance().GetHostname(&host);
/// @endcode
///
/// @par Lifetime
/// There is one instance per process, created by the first call of GetInstance() and destroyed at
/// process exit. Its endpoint is in the environment variable network_manager_url (default
/// "localhost:50007"), which is read when the instance is created.
///
/// @par Role interfaces
/// Creating the instance makes one RPC, GetAvailableInterfaces, to find the ids and MAC addresses
/// of three interfaces by their names: Dante primary (dante_primary_interface_env, default "lan0"),
/// Dante secondary (dante_secondary_interface_env, default "lan2") and control
/// (control_interface_env, default "lan1"). A role is unresolved if this RPC fails, if no interface
/// has the name, or if the variable is set to an empty string: its id is then -1 and its MAC
/// address empty for the life of the process, and nothing is printed.
///
/// @par Threads
/// All methods are thread-safe. Join the threads that call them before the process exits.
///
/// @par Blocking
/// Each method that returns a call status makes exactly one RPC, the one named in its comment. RPCs
/// have no deadline:
/// - If the daemon is absent or dies, an RPC fails within milliseconds.
/// - If the daemon freezes (stops answering keepalive pings) before an RPC or within its first
///   20 s, the RPC fails about 20 s later. A later freeze is not detected.
/// - If the daemon keeps running but never replies, the RPC lasts until the daemon ends.
///
/// @par Results
/// A method returns the gRPC status unchanged. Nothing is printed, retried or translated. Unless
/// the status is OK, the reply may be partly filled and must not be used. std::bad_alloc passes to
/// the caller.
class __attribute__((visibility("default"))) NetworkManagerClient {
 public:
  /// Returns the only instance, creating it on first use. Concurrent first callers wait until it
  /// has been created. Thread-safe. Creating it makes one RPC, GetAvailableInterfaces, and blocks
  /// without a deadline (see NetworkManagerClient).
  /// @return The instance, valid until the process exits.
  /// @throws std::bad_alloc There is no memory to create it; the next call tries again.
  static NetworkManagerClient& GetInstance();

  /// There is one instance per process: it cannot be copied.
  NetworkManagerClient(const NetworkManagerClient&) = delete;
  /// There is one instance per process: it cannot be assigned.
  NetworkManagerClient& operator=(const NetworkManagerClient&) = delete;

  /// Lists the interfaces that the daemon manages.
  ///
  /// RPC: GetAvailableInterfaces. Blocks without a deadline, thread-safe (see
  /// NetworkManagerClient).
  /// @param[out] reply  Id, name and MAC address of each, in the daemon's order.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetAvailableInterfaces(ostrevan::networkmanager::Interfaces* reply);

  /// Reads the stored configuration of the given interfaces.
  ///
  /// RPC: GetNetworkConfig. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[in] request  The ids of the interfaces.
  /// @param[out] reply  One entry for each of them that the daemon knows.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetNetworkConfig(const ostrevan::networkmanager::Ids& request,
                                ostrevan::networkmanager::InterfacesConfig* reply);

  /// Reads the present state of the given interfaces.
  ///
  /// RPC: GetNetworkStatus. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[in] request  The ids of the interfaces.
  /// @param[out] reply  One entry for each of them that the daemon knows.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetNetworkStatus(const ostrevan::networkmanager::Ids& request,
                                ostrevan::networkmanager::InterfacesStatus* reply);

  /// Stores the addressing of one interface. ReloadNetworkConfig applies it.
  ///
  /// RPC: SetNetworkConfig. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[in] request  The interface's id and its addressing.
  /// @param[out] reply  `reply->success()` is true if the change was stored.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetNetworkConfig(const ostrevan::networkmanager::InterfaceConfig& request,
                                ostrevan::networkmanager::Success* reply);

  /// Lists the switch modes that the device offers.
  ///
  /// RPC: GetAvailableSwitchModes. Blocks without a deadline, thread-safe (see
  /// NetworkManagerClient).
  /// @param[out] reply  Id and name of each, in the daemon's order.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetAvailableSwitchModes(ostrevan::networkmanager::SwitchModes* reply);

  /// Reads the switch mode in effect. Note the different name of the RPC.
  ///
  /// RPC: GetSwitchModeStatus. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  Id and name of the mode.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetCurrentSwitchMode(ostrevan::networkmanager::SwitchMode* reply);

  /// Reads the stored switch mode. Note the different name of the RPC.
  ///
  /// RPC: GetSwitchMode. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  Id and name of the mode.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetConfiguredSwitchMode(ostrevan::networkmanager::SwitchMode* reply);

  /// Selects a switch mode.
  ///
  /// RPC: SetSwitchMode. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[in] request  The id that GetAvailableSwitchModes lists, without the offset of
  ///   NetworkgRPC::SetSwitchMode.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetSwitchMode(const ostrevan::networkmanager::Id& request,
                             ostrevan::networkmanager::Success* reply);

  /// Reads the host name.
  ///
  /// RPC: GetHostname. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  The name.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetHostname(ostrevan::networkmanager::Hostname* reply);

  /// Sets the host name.
  ///
  /// RPC: SetHostname. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[in] request  The name.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetHostname(const ostrevan::networkmanager::Hostname& request,
                           ostrevan::networkmanager::Success* reply);

  /// Reads the stored list of NTP servers.
  ///
  /// RPC: GetNTPServer. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  Names or addresses.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetNTPServer(ostrevan::networkmanager::NTPServer* reply);

  /// Stores the list of NTP servers. ReloadNTPConfig applies it.
  ///
  /// RPC: SetNTPServer. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[in] request  Names or addresses.
  /// @param[out] reply  `reply->success()` is true if the change was stored.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetNTPServer(const ostrevan::networkmanager::NTPServer& request,
                            ostrevan::networkmanager::Success* reply);

  /// Reads the host's default gateway.
  ///
  /// RPC: GetRouting. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  Dotted IPv4 address.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetRouting(ostrevan::networkmanager::Routing* reply);

  /// Reads the DNS servers in use.
  ///
  /// RPC: GetDNSList. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  Their IP addresses.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetDNSList(ostrevan::networkmanager::DNS* reply);

  /// Applies the stored network configuration.
  ///
  /// RPC: ReloadNetworkConfig. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  `reply->success()` is true if it was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status ReloadNetworkConfig(ostrevan::networkmanager::Success* reply);

  /// Applies the stored NTP configuration.
  ///
  /// RPC: ReloadNTPConfig. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  `reply->success()` is true if it was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status ReloadNTPConfig(ostrevan::networkmanager::Success* reply);

  /// Resets the network settings to factory defaults.
  ///
  /// RPC: FactoryReset. Blocks without a deadline, thread-safe (see NetworkManagerClient).
  /// @param[out] reply  `reply->success()` is true if they were reset.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status FactoryReset(ostrevan::networkmanager::Success* reply);

  /// @name Role interfaces
  /// @{

  /// Returns the id of the Dante primary interface. Makes no RPC, thread-safe.
  /// @return The id; -1 if the role is unresolved (see NetworkManagerClient).
  std::int32_t GetDantePrimaryInterfaceID() const;

  /// Returns the id of the Dante secondary interface. Makes no RPC, thread-safe.
  /// @return The id; -1 if the role is unresolved (see NetworkManagerClient).
  std::int32_t GetDanteSecondaryInterfaceID() const;

  /// Returns the id of the control interface. Makes no RPC, thread-safe.
  /// @return The id; -1 if the role is unresolved (see NetworkManagerClient).
  std::int32_t GetControlInterfaceID() const;

  /// Returns the MAC address of the Dante primary interface. Makes no RPC, thread-safe.
  /// @return The MAC address exactly as the daemon sent it; empty if the role is unresolved (see
  ///   NetworkManagerClient).
  std::string GetDantePrimaryInterfaceMAC() const;

  /// Returns the MAC address of the Dante secondary interface. Makes no RPC, thread-safe.
  /// @return The MAC address exactly as the daemon sent it; empty if the role is unresolved (see
  ///   NetworkManagerClient).
  std::string GetDanteSecondaryInterfaceMAC() const;

  /// Returns the MAC address of the control interface. Makes no RPC, thread-safe.
  /// @return The MAC address exactly as the daemon sent it; empty if the role is unresolved (see
  ///   NetworkManagerClient).
  std::string GetControlInterfaceMAC() const;

  /// @}

 private:
  NetworkManagerClient();
  ~NetworkManagerClient();

  std::unique_ptr<ostrevan::networkmanager::NetworkManager::Stub> stub;
  std::int32_t dante_primary_id = -1;
  std::string dante_primary_mac;
  std::int32_t dante_secondary_id = -1;
  std::string dante_secondary_mac;
  std::int32_t control_id = -1;
  std::string control_mac;
};
