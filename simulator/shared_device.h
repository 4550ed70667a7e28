// The device under the lock that both services and a test share.
#pragma once

#include <mutex>
#include <utility>

#include "simulator/model.h"

namespace simulator {

class SharedDevice {
 public:
  explicit SharedDevice(Device initial) : device(std::move(initial)) {}

  /// Runs `use` with the device, to which nobody else has access meanwhile, and
  /// returns a copy of what it returns. `use` must make no call to the device.
  template <class Use>
  auto With(Use&& use) {
    const std::lock_guard<std::mutex> lock(mutex);
    return std::forward<Use>(use)(device);
  }

 private:
  std::mutex mutex;
  Device device;
};

}  // namespace simulator
