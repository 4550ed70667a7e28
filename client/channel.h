// The only place that creates a channel, and the only place that makes a call.
#pragma once

#include <grpcpp/channel.h>
#include <grpcpp/client_context.h>
#include <grpcpp/support/channel_arguments.h>
#include <grpcpp/support/status.h>

#include <memory>

#include "client/environment.h"
#include "ostrevan/common.pb.h"

namespace client {

/// Creates a channel to `endpoint` without TLS, with the library's keepalive and more
/// arguments. It connects at the first call.
std::shared_ptr<grpc::Channel> MakeChannel(const Setting& endpoint,
                                           grpc::ChannelArguments arguments = {});

/// Makes one blocking unary call with its own context: no deadline, no
/// wait-for-ready, no metadata. Returns the status of gRPC unchanged.
template <class Stub, class Request, class Reply>
grpc::Status Call(Stub& stub,
                  grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Reply*),
                  const Request& request, Reply* reply) {
  grpc::ClientContext context;
  return (stub.*method)(&context, request, reply);
}

/// The same for an RPC without parameters.
template <class Stub, class Reply>
grpc::Status Call(Stub& stub,
                  grpc::Status (Stub::*method)(grpc::ClientContext*, const ostrevan::common::Empty&,
                                               Reply*),
                  Reply* reply) {
  return Call(stub, method, ostrevan::common::Empty(), reply);
}

}  // namespace client
