#include "simulator/proxy.h"

#include <grpcpp/client_context.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>
#include <grpcpp/support/channel_arguments.h>

#include "wire_schema/byte_buffer.h"

namespace simulator {
namespace {

constexpr int kLongestPauseMs = 1000;  // between attempts to connect

// With a connection of its own, and without the length limit of clients.
std::shared_ptr<grpc::Channel> ChannelTo(const std::string& url) {
  grpc::ChannelArguments arguments;
  arguments.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
  arguments.SetInt(GRPC_ARG_MAX_RECONNECT_BACKOFF_MS, kLongestPauseMs);
  arguments.SetMaxReceiveMessageSize(-1);
  return grpc::CreateCustomChannel(url, grpc::InsecureChannelCredentials(), arguments);
}

// One call to a daemon. It lives until the answer has come.
struct Passed {
  grpc::ClientContext context;
  grpc::ByteBuffer request;
  grpc::ByteBuffer reply;
};

}  // namespace

Proxy::Proxy(const std::string& network_manager_url, const std::string& dapi_url,
             const std::string& file, bool redacts)
    : network_manager(ChannelTo(network_manager_url)),
      dapi(ChannelTo(dapi_url)),
      recording(file, redacts) {}

void Proxy::Answer(const Query& query, const Done& done) {
  const auto passed = std::make_shared<Passed>();
  passed->context.set_deadline(query.deadline);
  passed->request = wire_schema::ToByteBuffer(query.request);
  query.cancellation->Set([passed] { passed->context.TryCancel(); });
  grpc::GenericStub& stub = query.daemon == Daemon::kDapi ? dapi : network_manager;
  stub.UnaryCall(
      &passed->context, query.path, {}, &passed->request, &passed->reply,
      [passed, done](grpc::Status status) noexcept {
        const bool is_ok = status.ok();
        done({std::move(status), is_ok ? wire_schema::ToString(passed->reply) : "", false});
      });
}

}  // namespace simulator
