// The devices of one run, which see each other's names and transmit channels.
//
// Threads: every function may be called from several threads at once.
#pragma once

#include <mutex>
#include <vector>

#include "simulator/model.h"

namespace simulator {

class AudioNetwork {
 public:
  void Join(const Device& device);
  void Leave(const Device& device);

  /// Locks all devices, and marks which of its subscriptions by name `device`
  /// receives: Link::flag5 is true if the named device is there, has a transmit channel
  /// of that label, transmits, and has the same sample rate. A device that is alone
  /// keeps its flags.
  std::unique_lock<std::mutex> Lock(Device& device);

 private:
  bool Receives(const Device& device, const Link& link) const;

  std::mutex mutex;
  std::vector<const Device*> devices;
};

}  // namespace simulator
