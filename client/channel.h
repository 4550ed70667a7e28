// The one way in which this library makes a channel and a call on it.
#pragma once

#include <grpcpp/channel.h>
#include <grpcpp/client_context.h>
#include <grpcpp/support/status.h>

#include <memory>

#include "client/environment.h"
#include "ostrevan/common.pb.h"

namespace client {

/// A channel without TLS to the daemon that `endpoint` names, with the
/// library's keepalive. Nothing connects before the first call.
std::shared_ptr<grpc::Channel> MakeChannel(const Setting& endpoint);

/// One blocking unary call in a context of its own: no deadline, no
/// wait-for-ready, no metadata. Whatever gRPC says comes back unchanged.
template <class Stub, class Request, class Reply>
grpc::Status Call(Stub& stub,
                  grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*),
                  const Request& request, Reply* reply) {
  grpc::ClientContext context;
  return (stub.*method)(&context, request, reply);
}

/// The same for a call without parameters.
template <class Stub, class Reply>
grpc::Status Call(Stub& stub,
                  grpc::Status (Stub::*method)(grpc::ClientContext*, const ostrevan::common::Empty&,
                                               Reply*),
                  Reply* reply) {
  return Call(stub, method, ostrevan::common::Empty(), reply);
}

}  // namespace client
