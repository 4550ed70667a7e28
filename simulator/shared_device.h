// One device as its daemons and a test share it.
#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "simulator/audio_network.h"
#include "simulator/backend.h"
#include "simulator/call_log.h"
#include "simulator/fault_table.h"
#include "simulator/hooks.h"
#include "simulator/model.h"

namespace simulator {

class SharedDevice {
 public:
  explicit SharedDevice(Device initial, Hooks wanted = {}, std::shared_ptr<Backend> answering = {},
                        std::shared_ptr<AudioNetwork> joined = {})
      : hooks(std::move(wanted)),
        backend(std::move(answering)),
        network(joined != nullptr ? std::move(joined) : std::make_shared<AudioNetwork>()),
        device(std::move(initial)) {
    network->Join(device);
  }
  ~SharedDevice() { network->Leave(device); }

  SharedDevice(const SharedDevice&) = delete;
  SharedDevice& operator=(const SharedDevice&) = delete;

  /// The model, locked for as long as the first of the pair lives.
  std::pair<std::unique_lock<std::mutex>, Device&> Lock() {
    return {network->Lock(device), device};
  }

  const Hooks hooks;
  const std::shared_ptr<Backend> backend;  // answers instead of the model, if not null
  FaultTable faults;
  CallLog calls;

 private:
  const std::shared_ptr<AudioNetwork> network;
  Device device;
};

}  // namespace simulator
