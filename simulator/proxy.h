// Passes calls on to real daemons, byte for byte, and records them.
//
// Status, message and details of a failed call are passed on as well, and the client's
// deadline and cancellation. Metadata are not. Messages of any length are accepted.
#pragma once

#include <grpcpp/generic/generic_stub.h>

#include <memory>
#include <string>

#include "simulator/recording.h"

namespace simulator {

class Proxy : public Backend {
 public:
  /// Calls before the daemons can be reached fail as those of any client. Throws
  /// std::runtime_error if the file cannot be written.
  Proxy(const std::string& network_manager_url, const std::string& dapi_url,
        const std::string& file, bool redacts);

  void Answer(const Query& query, const Done& done) override;
  void Ended(const Query& query, const std::string& fault, const Outcome& outcome) override {
    recording.Write(query, fault, outcome);
  }
  bool IsComplete() const { return recording.IsComplete(); }

 private:
  grpc::GenericStub network_manager;
  grpc::GenericStub dapi;
  RecordingFile recording;
};

}  // namespace simulator
