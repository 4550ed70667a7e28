// Receives every call of one daemon: meets it with a fault, or hands it to the
// service.
#pragma once

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/impl/service_type.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>

#include "simulator/faults.h"
#include "simulator/methods.h"

namespace simulator {

class Dispatcher : public grpc::CallbackGenericService {
 public:
  /// Both must outlive the dispatcher.
  Dispatcher(Daemon which, grpc::Service& answering, Faults& table)
      : daemon(which), service(answering), faults(table) {}
  /// To be called when the server that it is registered with has gone.
  ~Dispatcher() override;

  Dispatcher(const Dispatcher&) = delete;
  Dispatcher& operator=(const Dispatcher&) = delete;

  grpc::ServerGenericBidiReactor* CreateReactor(
      grpc::GenericCallbackServerContext* context) override;

  /// Answers the frozen calls as usual whose fault was told for exactly this
  /// method or pattern; all for "".
  void Thaw(const std::string& pattern);

 private:
  class Call;

  std::uint64_t Thaws();
  bool IsThawedSince(std::uint64_t before, const std::string& pattern) const;

  const Daemon daemon;
  grpc::Service& service;
  Faults& faults;
  std::mutex mutex;        // guards what follows, and whether a call is given up
  std::set<Call*> frozen;  // whoever takes a call out of it, ends the call
  std::uint64_t thaws = 0;
  std::map<std::string, std::uint64_t> last_thaw;  // by pattern, in terms of thaws
};

}  // namespace simulator
