// Receives every call to one daemon and records it; answers it with a fault, or
// from the method table.
#pragma once

#include <grpcpp/generic/async_generic_service.h>

#include <mutex>
#include <set>
#include <string>

#include "simulator/shared_device.h"

namespace simulator {

class Dispatcher : public grpc::CallbackGenericService {
 public:
  /// The device must outlive the dispatcher.
  Dispatcher(Daemon which, SharedDevice& shared) : daemon(which), device(shared) {}
  /// To be called after the server that it is registered with is destroyed.
  ~Dispatcher() override;

  Dispatcher(const Dispatcher&) = delete;
  Dispatcher& operator=(const Dispatcher&) = delete;

  grpc::ServerGenericBidiReactor* CreateReactor(
      grpc::GenericCallbackServerContext* context) override;

  /// Answers as usual the frozen calls whose fault was given for exactly this
  /// method or pattern; "" for all. To be called after the fault is removed.
  void Thaw(const std::string& pattern);

 private:
  class Call;

  const Daemon daemon;
  SharedDevice& device;
  std::mutex mutex;        // guards `frozen` and the state of the calls
  std::set<Call*> frozen;  // calls with the fault freeze that nobody has thawed
};

}  // namespace simulator
