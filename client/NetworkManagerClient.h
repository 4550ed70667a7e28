/// @file
/// Wire messages and call status, one method per RPC; needs gRPC and protobuf-lite.

/// @class NetworkManagerClient
/// The process-wide client of the network-manager daemon's gRPC service, for code
/// that wants the wire messages and the full call status. Most applications are
/// better served by NetworkgRPC.h.
///
/// @par Lifetime
/// One instance per process, built on the first call of GetInstance() and
/// destroyed at process exit. The endpoint comes from the environment variable
/// network_manager_url (default "localhost:50007"), read once, when the instance
/// is built. Building it makes one call, GetAvailableInterfaces, to resolve the
/// three role interfaces below; when that call fails they stay unresolved for the
/// life of the process, silently.
///
/// @par Threads
/// Every method may be called from several threads at once. Join the threads that
/// call before the process exits.
///
/// @par Blocking
/// Each method that returns a call status makes exactly one blocking unary call
/// without a deadline, on the RPC of its own name but for the two that say
/// otherwise. A daemon that is absent or dies ends the call in milliseconds, one
/// that freezes 20 s later, when the connection's keepalive notices; later than
/// 20 s into a call it no longer does. One that accepts the call and never
/// answers holds it until the daemon ends.
///
/// @par Results
/// The gRPC status of the call, unchanged. Nothing is printed, retried or
/// translated. After a status other than OK the reply may be partly filled and is
/// not to be used.
#pragma once

#include <grpcpp/support/status.h>

#include <cstdint>
#include <memory>
#include <string>

// The generated classes are part of this library's exported interface, also
// for a program that hides its own symbols.
#pragma GCC visibility push(default)
#include "ostrevan/networkmanager.grpc.pb.h"
#pragma GCC visibility pop

class __attribute__((visibility("default"))) NetworkManagerClient {
 public:
  /// The one instance of the process, built on first use; concurrent first
  /// callers wait for one of them to build it. Throws what building it throws
  /// (std::bad_alloc); the next call then tries again.
  /// @return the instance, valid until the process exits
  static NetworkManagerClient& GetInstance();

  NetworkManagerClient(const NetworkManagerClient&) = delete;
  NetworkManagerClient& operator=(const NetworkManagerClient&) = delete;

  /// Lists the interfaces that the daemon manages.
  /// @param[out] reply  number, name and MAC address of each
  /// @return the status of the call
  grpc::Status GetAvailableInterfaces(ostrevan::networkmanager::Interfaces* reply);

  /// Reads the stored configuration of the listed interfaces.
  /// @param[in] request  the interfaces' numbers
  /// @param[out] reply  one entry for each interface that the daemon knows
  /// @return the status of the call
  grpc::Status GetNetworkConfig(const ostrevan::networkmanager::Ids& request,
                                ostrevan::networkmanager::InterfacesConfig* reply);

  /// Reads the present state of the listed interfaces.
  /// @param[in] request  the interfaces' numbers
  /// @param[out] reply  one entry for each interface that the daemon knows
  /// @return the status of the call
  grpc::Status GetNetworkStatus(const ostrevan::networkmanager::Ids& request,
                                ostrevan::networkmanager::InterfacesStatus* reply);

  /// Stores a new configuration for one interface.
  /// @param[in] request  the interface's number and its addressing
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetNetworkConfig(const ostrevan::networkmanager::InterfaceConfig& request,
                                ostrevan::networkmanager::Success* reply);

  /// Lists every switch mode that the device offers.
  /// @param[out] reply  number and name of each
  /// @return the status of the call
  grpc::Status GetAvailableSwitchModes(ostrevan::networkmanager::SwitchModes* reply);

  /// Reads the switch mode in effect: the service calls this GetSwitchModeStatus.
  /// @param[out] reply  its number and name
  /// @return the status of the call
  grpc::Status GetCurrentSwitchMode(ostrevan::networkmanager::SwitchMode* reply);

  /// Reads the stored switch mode: the service calls this GetSwitchMode.
  /// @param[out] reply  its number and name
  /// @return the status of the call
  grpc::Status GetConfiguredSwitchMode(ostrevan::networkmanager::SwitchMode* reply);

  /// Selects a switch mode by the id that GetAvailableSwitchModes lists.
  /// @param[in] request  the mode's number, without the offset of the facade
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetSwitchMode(const ostrevan::networkmanager::Id& request,
                             ostrevan::networkmanager::Success* reply);

  /// Reads the host name.
  /// @param[out] reply  the name
  /// @return the status of the call
  grpc::Status GetHostname(ostrevan::networkmanager::Hostname* reply);

  /// Sets the host name.
  /// @param[in] request  the name
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetHostname(const ostrevan::networkmanager::Hostname& request,
                           ostrevan::networkmanager::Success* reply);

  /// Reads the NTP server list.
  /// @param[out] reply  names or addresses
  /// @return the status of the call
  grpc::Status GetNTPServer(ostrevan::networkmanager::NTPServer* reply);

  /// Stores the NTP server list.
  /// @param[in] request  names or addresses
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetNTPServer(const ostrevan::networkmanager::NTPServer& request,
                            ostrevan::networkmanager::Success* reply);

  /// Reads the host's default gateway.
  /// @param[out] reply  its address
  /// @return the status of the call
  grpc::Status GetRouting(ostrevan::networkmanager::Routing* reply);

  /// Reads the DNS servers in use.
  /// @param[out] reply  their addresses
  /// @return the status of the call
  grpc::Status GetDNSList(ostrevan::networkmanager::DNS* reply);

  /// Applies the stored network configuration.
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status ReloadNetworkConfig(ostrevan::networkmanager::Success* reply);

  /// Applies the stored NTP configuration.
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status ReloadNTPConfig(ostrevan::networkmanager::Success* reply);

  /// Resets the network settings to factory defaults.
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status FactoryReset(ostrevan::networkmanager::Success* reply);

  /// @name Role interfaces
  /// The three role interfaces, as resolved when the instance was built. The
  /// names looked for come from the environment variables
  /// dante_primary_interface_env ("lan0"), dante_secondary_interface_env ("lan2")
  /// and control_interface_env ("lan1"). No call is made.
  /// @{

  /// Tells the number of the Dante primary interface.
  /// @return the number, -1 when unresolved
  std::int32_t GetDantePrimaryInterfaceID() const;

  /// Tells the number of the Dante secondary interface.
  /// @return the number, -1 when unresolved
  std::int32_t GetDanteSecondaryInterfaceID() const;

  /// Tells the number of the control interface.
  /// @return the number, -1 when unresolved
  std::int32_t GetControlInterfaceID() const;

  /// Tells the MAC address of the Dante primary interface.
  /// @return the text exactly as the daemon sent it, empty when unresolved
  std::string GetDantePrimaryInterfaceMAC() const;

  /// Tells the MAC address of the Dante secondary interface.
  /// @return the text exactly as the daemon sent it, empty when unresolved
  std::string GetDanteSecondaryInterfaceMAC() const;

  /// Tells the MAC address of the control interface.
  /// @return the text exactly as the daemon sent it, empty when unresolved
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
