#include "tools/call.h"

#include "DAPIClient.h"
#include "NetworkManagerClient.h"

namespace tool {
namespace {

grpc::Status Probe(Daemon daemon) {
  if (daemon == Daemon::kDante) {
    ostrevan::grpcdapi::Name name;
    return DAPIClient::GetInstance().GetName(&name);
  }
  ostrevan::networkmanager::Hostname hostname;
  return NetworkManagerClient::GetInstance().GetHostname(&hostname);
}

}  // namespace

bool IsOutOfReach(Daemon daemon, const grpc::Status& status) {
  return status.error_code() == grpc::StatusCode::UNAVAILABLE || Endpoint(daemon).empty();
}

Failure Explain(Daemon daemon, const std::string& action) {
  const std::string who = std::string("the ") + Name(daemon) + " daemon";
  if (!IsOutOfReach(daemon, Probe(daemon)))
    return {ExitStatus::kRefused, who + " refused to " + action, daemon};
  return {ExitStatus::kUnreachable,
          "cannot " + action + ": " + who + " at " + Endpoint(daemon) + " cannot be reached",
          daemon};
}

}  // namespace tool
