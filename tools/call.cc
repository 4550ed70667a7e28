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

Failure Explain(Daemon daemon, const std::string& action) {
  const std::string who = std::string("the ") + Name(daemon) + " daemon";
  // Any other status, also an error, is an answer.
  if (Probe(daemon).error_code() != grpc::StatusCode::UNAVAILABLE)
    return {ExitStatus::kRefused, who + " refused to " + action, daemon};
  return {ExitStatus::kUnreachable,
          "cannot " + action + ": " + who + " at " + Endpoint(daemon) + " cannot be reached",
          daemon};
}

}  // namespace tool
