// Every method of the two services by its name, for what treats them alike.
#pragma once

#include <grpcpp/impl/service_type.h>
#include <grpcpp/support/status.h>

#include <functional>
#include <string>
#include <vector>

#include "simulator/fault.h"
#include "simulator/json.h"

namespace simulator {

struct Method {
  std::string name;              // "GetName"
  bool replies_success = false;  // its reply is the message Success

  /// Calls the method of a service of the right class with a request as bytes,
  /// and gives its reply as bytes.
  std::function<grpc::Status(grpc::Service& service, const std::string& request,
                             std::string& reply)>
      answer;

  /// The request in words, member by member; null when it cannot be parsed.
  std::function<Json(const std::string& request)> show;
};

const std::vector<Method>& MethodsOf(Daemon daemon);

/// Null when the daemon has no such method.
const Method* FindMethod(Daemon daemon, const std::string& name);

}  // namespace simulator
