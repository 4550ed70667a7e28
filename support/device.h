// Two scripted daemons that stand for a device, and the environment that points the
// library at them.
#pragma once

#include <google/protobuf/message_lite.h>

#include <memory>
#include <string>

#include "support/scripted_daemon.h"

namespace support {

/// "/ostrevan.networkmanager.NetworkManager/METHOD"
std::string NetworkManagerPath(const std::string& method);
/// "/ostrevan.grpcdapi.DAPI/METHOD"
std::string DapiPath(const std::string& method);
/// The METHOD of such a path.
std::string MethodOf(const std::string& path);

/// The answer that carries this message.
Answer Reply(const google::protobuf::MessageLite& message);

// The interfaces of a scripted device, unless a test scripts others. The
// first three have the roles Dante primary, control and Dante secondary.
inline constexpr int kLan0 = 10;
inline constexpr int kLan1 = 11;
inline constexpr int kLan2 = 12;
inline constexpr int kLan3 = 13;
inline constexpr const char* kLan0Mac = "02:00:00:00:00:10";
inline constexpr const char* kLan1Mac = "02:00:00:00:00:11";
inline constexpr const char* kLan2Mac = "02:00:00:00:00:12";
inline constexpr const char* kLan3Mac = "02:00:00:00:00:13";

class Device {
 public:
  /// Starts both daemons and points the environment of this process at them.
  /// The list of interfaces is scripted, nothing else.
  Device() : Device("127.0.0.1:0", "127.0.0.1:0") {}
  /// The same with daemons that listen on these addresses.
  Device(const std::string& network_manager_address, const std::string& dapi_address);

  /// Makes the library build both clients, and forgets the requests that this took.
  void BuildClients();

  /// The daemon that serves this path.
  ScriptedDaemon& DaemonOf(const std::string& path);

  /// Returns the requests that arrived at both daemons since the last call.
  std::vector<Request> TakeRequests();

  void StopNetworkManager() { network_manager.reset(); }
  void StopDapi() { dapi.reset(); }

  std::unique_ptr<ScriptedDaemon> network_manager;
  std::unique_ptr<ScriptedDaemon> dapi;
  Answer interfaces;  // the list with the four, for a test that scripts it again
};

}  // namespace support
