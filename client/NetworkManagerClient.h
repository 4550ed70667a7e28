// The process-wide client of the network-manager daemon's gRPC service, for
// code that wants the wire messages and the full call status. Most applications
// are better served by NetworkgRPC.h.
//
// Lifetime: one instance per process, built on the first call of GetInstance()
//   and destroyed at process exit. The endpoint comes from the environment
//   variable network_manager_url (default "localhost:50007"), read once, when
//   the instance is built. Building it makes one call, GetAvailableInterfaces,
//   to resolve the three role interfaces below; when that call fails they stay
//   unresolved for the life of the process, silently.
// Threads: every method may be called from several threads at once. Join the
//   threads that call before the process exits.
// Blocking: each call method makes exactly one blocking unary call without a
//   deadline. A daemon that is absent or dies ends the call in milliseconds;
//   one that accepts the call and never answers holds it for as long as its
//   connection lives.
// Results: the gRPC status of the call, unchanged. Nothing is printed, retried
//   or translated. After a status other than OK the reply may be partly filled
//   and is not to be used.
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
  /// callers wait for one of them to build it. Defined here so that the
  /// application and the library share one object. Throws what building it
  /// throws (std::bad_alloc); the next call then tries again.
  static NetworkManagerClient& GetInstance() {
    static NetworkManagerClient instance;
    return instance;
  }

  NetworkManagerClient(const NetworkManagerClient&) = delete;
  NetworkManagerClient& operator=(const NetworkManagerClient&) = delete;

  /// Lists the interfaces that the daemon manages.
  grpc::Status GetAvailableInterfaces(ostrevan::networkmanager::Interfaces* reply);
  /// Reads the stored configuration of the listed interfaces.
  grpc::Status GetNetworkConfig(const ostrevan::networkmanager::Ids& request,
                                ostrevan::networkmanager::InterfacesConfig* reply);
  /// Reads the present state of the listed interfaces.
  grpc::Status GetNetworkStatus(const ostrevan::networkmanager::Ids& request,
                                ostrevan::networkmanager::InterfacesStatus* reply);
  /// Stores a new configuration for one interface.
  grpc::Status SetNetworkConfig(const ostrevan::networkmanager::InterfaceConfig& request,
                                ostrevan::networkmanager::Success* reply);
  /// Lists every switch mode that the device offers.
  grpc::Status GetAvailableSwitchModes(ostrevan::networkmanager::SwitchModes* reply);
  /// Reads the switch mode in effect: the service calls this GetSwitchModeStatus.
  grpc::Status GetCurrentSwitchMode(ostrevan::networkmanager::SwitchMode* reply);
  /// Reads the stored switch mode: the service calls this GetSwitchMode.
  grpc::Status GetConfiguredSwitchMode(ostrevan::networkmanager::SwitchMode* reply);
  /// Selects a switch mode by the id that GetAvailableSwitchModes lists.
  grpc::Status SetSwitchMode(const ostrevan::networkmanager::Id& request,
                             ostrevan::networkmanager::Success* reply);
  /// Reads the host name.
  grpc::Status GetHostname(ostrevan::networkmanager::Hostname* reply);
  /// Sets the host name.
  grpc::Status SetHostname(const ostrevan::networkmanager::Hostname& request,
                           ostrevan::networkmanager::Success* reply);
  /// Reads the NTP server list.
  grpc::Status GetNTPServer(ostrevan::networkmanager::NTPServer* reply);
  /// Stores the NTP server list.
  grpc::Status SetNTPServer(const ostrevan::networkmanager::NTPServer& request,
                            ostrevan::networkmanager::Success* reply);
  /// Reads the host's default gateway.
  grpc::Status GetRouting(ostrevan::networkmanager::Routing* reply);
  /// Reads the DNS servers in use.
  grpc::Status GetDNSList(ostrevan::networkmanager::DNS* reply);
  /// Applies the stored network configuration.
  grpc::Status ReloadNetworkConfig(ostrevan::networkmanager::Success* reply);
  /// Applies the stored NTP configuration.
  grpc::Status ReloadNTPConfig(ostrevan::networkmanager::Success* reply);
  /// Resets the network settings to factory defaults.
  grpc::Status FactoryReset(ostrevan::networkmanager::Success* reply);

  // The three role interfaces, as resolved when the instance was built. The
  // names looked for come from the environment variables
  // dante_primary_interface_env ("lan0"), dante_secondary_interface_env ("lan2")
  // and control_interface_env ("lan1"). No call is made.

  /// Interface id, -1 when unresolved.
  std::int32_t GetDantePrimaryInterfaceID() const;
  /// Interface id, -1 when unresolved.
  std::int32_t GetDanteSecondaryInterfaceID() const;
  /// Interface id, -1 when unresolved.
  std::int32_t GetControlInterfaceID() const;
  /// MAC address text exactly as the daemon sent it, empty when unresolved.
  std::string GetDantePrimaryInterfaceMAC() const;
  /// MAC address text exactly as the daemon sent it, empty when unresolved.
  std::string GetDanteSecondaryInterfaceMAC() const;
  /// MAC address text exactly as the daemon sent it, empty when unresolved.
  std::string GetControlInterfaceMAC() const;

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
