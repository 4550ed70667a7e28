// One device as its daemons and a test share it.
#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "simulator/backend.h"
#include "simulator/call_log.h"
#include "simulator/fault_table.h"
#include "simulator/hooks.h"
#include "simulator/model.h"

namespace simulator {

class SharedDevice {
 public:
  explicit SharedDevice(Device initial, Hooks wanted = {}, std::shared_ptr<Backend> answering = {})
      : hooks(std::move(wanted)), backend(std::move(answering)), device(std::move(initial)) {}

  /// The model, locked for as long as the first of the pair lives.
  std::pair<std::unique_lock<std::mutex>, Device&> Lock() {
    return {std::unique_lock<std::mutex>(mutex), device};
  }

  const Hooks hooks;
  const std::shared_ptr<Backend> backend;  // answers instead of the model, if not null
  FaultTable faults;
  CallLog calls;

 private:
  std::mutex mutex;
  Device device;
};

}  // namespace simulator
