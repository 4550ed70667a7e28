// The first answer without the library: the generated stub on a channel made as
// the library makes its own.
#include "client/channel.h"
#include "ostrevan/grpcdapi.grpc.pb.h"
#include "tests/footprint/private_memory.h"

int main() {
  const auto stub = ostrevan::grpcdapi::DAPI::NewStub(client::MakeChannel(client::kDapiUrl));
  grpc::ClientContext context;
  ostrevan::grpcdapi::Name reply;
  const bool answered = stub->GetName(&context, {}, &reply).ok();
  return footprint::TellFirstAnswer(answered && !reply.name().empty());
}
