// The daemons of another host, through the system's ssh.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <string>

#include "tools/devices.h"

namespace tool {

/// Two Unix sockets in a private folder, which ssh forwards to the daemons of
/// `device.host`. Keys and prompts are those of ssh, which uses the terminal. It does not
/// outlive this process, however that ends; the folder does if this process is killed.
class Tunnel {
 public:
  /// Returns when ssh is connected; throws kUnreachable if it ends before, within about
  /// `seconds` if the host is silent.
  Tunnel(const Device& device, double seconds);
  ~Tunnel();

  Tunnel(const Tunnel&) = delete;
  Tunnel& operator=(const Tunnel&) = delete;

  /// Endpoints in this process.
  std::string NetworkManager() const { return "unix:" + folder + kNetworkManager; }
  std::string Dapi() const { return "unix:" + folder + kDapi; }

 private:
  static constexpr const char* kNetworkManager = "/network-manager";
  static constexpr const char* kDapi = "/dapi";

  void Start(const Device& device, double seconds);
  void AwaitReady(const std::string& host);
  void End() noexcept;

  std::string folder;
  std::atomic<pid_t> ssh{0};
  int input = -1;   // ssh ends when it is closed
  int output = -1;  // of the command on the host
};

}  // namespace tool
