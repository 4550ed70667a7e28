// One device as its daemons and a test share it.
#pragma once

#include <mutex>
#include <utility>

#include "simulator/call_log.h"
#include "simulator/fault_table.h"
#include "simulator/model.h"

namespace simulator {

class SharedDevice {
 public:
  explicit SharedDevice(Device initial) : device(std::move(initial)) {}

  /// The model, locked for as long as the first of the pair lives.
  std::pair<std::unique_lock<std::mutex>, Device&> Lock() {
    return {std::unique_lock<std::mutex>(mutex), device};
  }

  FaultTable faults;
  CallLog calls;

 private:
  std::mutex mutex;
  Device device;
};

}  // namespace simulator
