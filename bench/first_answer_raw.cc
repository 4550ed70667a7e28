// The first answer without the library: the generated stub on a channel made as
// the library makes its own.
#include "bench/private_memory.h"
#include "client/channel.h"
#include "ostrevan/grpcdapi.grpc.pb.h"

int main() {
  const auto stub = ostrevan::grpcdapi::DAPI::NewStub(client::MakeChannel(client::kDapiUrl));
  grpc::ClientContext context;
  ostrevan::grpcdapi::Name reply;
  const bool answered = stub->GetName(&context, {}, &reply).ok();
  return bench::ReportFirstAnswer(answered && !reply.name().empty());
}
