// Read from several devices in one process, with a deadline for each call.
//
// usage: several_devices ENDPOINT...     endpoints of Dante API daemons
//
// The facades and the two clients have one endpoint per daemon and process. The generated stub has
// any number, deadlines, cancellation and the daemon's own message. Compile it with the pkg-config
// module NetworkgRPC-client, and never link gRPC with TLS besides (docs/limits.md).
#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

#include <chrono>
#include <future>
#include <iostream>
#include <string>
#include <vector>

#include "ostrevan/grpcdapi.grpc.pb.h"

namespace dapi = ostrevan::grpcdapi;

namespace {

std::string ReadName(const std::string& endpoint) {
  const auto stub =
      dapi::DAPI::NewStub(grpc::CreateChannel(endpoint, grpc::InsecureChannelCredentials()));
  grpc::ClientContext context;  // one per call; TryCancel() from another thread ends the call
  context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(2));
  dapi::Name reply;
  const grpc::Status status = stub->GetName(&context, ostrevan::common::Empty(), &reply);
  if (status.ok()) return reply.name();
  if (status.error_code() == grpc::StatusCode::DEADLINE_EXCEEDED) return "no answer within 2 s";
  return "failed: " + status.error_message();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::future<std::string>> names;
  for (int i = 1; i < argc; ++i) names.push_back(std::async(std::launch::async, ReadName, argv[i]));
  for (std::size_t i = 0; i < names.size(); ++i)
    std::cout << "device " << i + 1 << ": " << names[i].get() << '\n';
}
