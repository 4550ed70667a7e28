// One device as its daemons and a test share it.
#pragma once

#include <mutex>
#include <utility>

#include "simulator/call_log.h"
#include "simulator/fault_table.h"
#include "simulator/hooks.h"
#include "simulator/model.h"

namespace simulator {

class SharedDevice {
 public:
  explicit SharedDevice(Device initial, Hooks wanted = {})
      : hooks(std::move(wanted)), device(std::move(initial)) {}

  /// The model, locked for as long as the first of the pair lives.
  std::pair<std::unique_lock<std::mutex>, Device&> Lock() {
    return {std::unique_lock<std::mutex>(mutex), device};
  }

  const Hooks hooks;
  FaultTable faults;
  CallLog calls;

 private:
  std::mutex mutex;
  Device device;
};

}  // namespace simulator
