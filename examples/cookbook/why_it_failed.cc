// Find out why a call failed, with the client classes: unreachable, an error, or rejected.
//
// usage: why_it_failed NAME
//
// The facades return false for all three and print a line. The clients return the call status and
// print nothing. They have the same connection, no deadline either, and need the headers of gRPC
// (pkg-config module NetworkgRPC-client). docs/from-clients.md compares both.
#include <iostream>
#include <string>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"

namespace {

std::string Describe(const grpc::Status& status) {
  // Also if the connection ended during the call: a change may have been made.
  if (status.error_code() == grpc::StatusCode::UNAVAILABLE) return "the daemon is unreachable";
  return "the daemon answered: " + status.error_message();
}

}  // namespace

int main(int argc, char** argv) {
  ostrevan::networkmanager::Hostname host;
  const grpc::Status read = NetworkManagerClient::GetInstance().GetHostname(&host);
  // Unless the status is OK, the reply must not be used.
  std::cout << "host name: " << (read.ok() ? host.hostname() : Describe(read)) << '\n';

  ostrevan::grpcdapi::Name request;
  request.set_name(argc == 2 ? argv[1] : "Hall");
  ostrevan::grpcdapi::Success reply;
  const grpc::Status changed = DAPIClient::GetInstance().SetName(request, &reply);
  const bool done = changed.ok() && reply.success();  // both: a rejection has the status OK
  std::cout << "name: " << (done ? "set" : changed.ok() ? "rejected" : Describe(changed)) << '\n';
  return read.ok() && done ? 0 : 1;
}
