// The RPCs of both daemons by name: the dispatcher answers them, the faults and
// the call log name them.
#pragma once

#include <grpcpp/support/status.h>

#include <functional>
#include <string>
#include <vector>

#include "simulator/fault.h"
#include "simulator/json.h"
#include "simulator/shared_device.h"
#include "wire_schema/wire_schema.h"

namespace simulator {

struct Method {
  std::string name;              // "GetName"
  bool replies_success = false;  // the reply is the message Success

  /// Answers a serialized request with a serialized reply.
  std::function<grpc::Status(SharedDevice& device, const std::string& request, std::string& reply)>
      answer;

  /// As JSON; null if it cannot be parsed.
  std::function<Json(const std::string& request)> show;
  std::function<Json(const std::string& reply)> show_reply;
  const wire_schema::WireMessage* request = nullptr;
  const wire_schema::WireMessage* reply = nullptr;
};

/// The service with its package, "ostrevan.grpcdapi.DAPI".
const char* ServiceOf(Daemon daemon);

const std::vector<Method>& MethodsOf(Daemon daemon);

/// Null if the daemon has no such method.
const Method* FindMethod(Daemon daemon, const std::string& name);

/// A method of either daemon whose request has no fields; null if there is none.
const Method* FindWithoutParameters(const std::string& name);

}  // namespace simulator
