#include "client/channel.h"

#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

namespace client {
namespace {

// A ping every 10 s, also between calls, must be answered within 10 s: this
// detects a frozen daemon although calls have no deadline.
constexpr int kKeepaliveTimeMs = 10000;
constexpr int kKeepaliveTimeoutMs = 10000;
constexpr int kKeepalivePermitWithoutCalls = 1;

}  // namespace

std::shared_ptr<grpc::Channel> MakeChannel(const Setting& endpoint,
                                           grpc::ChannelArguments arguments) {
  const std::string target = endpoint.Value();
  arguments.SetInt(GRPC_ARG_KEEPALIVE_TIME_MS, kKeepaliveTimeMs);
  arguments.SetInt(GRPC_ARG_KEEPALIVE_TIMEOUT_MS, kKeepaliveTimeoutMs);
  arguments.SetInt(GRPC_ARG_KEEPALIVE_PERMIT_WITHOUT_CALLS, kKeepalivePermitWithoutCalls);
  return grpc::CreateCustomChannel(target, grpc::InsecureChannelCredentials(), arguments);
}

}  // namespace client
