#include "tools/call.h"

#include "DAPIClient.h"
#include "NetworkManagerClient.h"

namespace tool {

grpc::Status Probe(Daemon daemon) {
  if (daemon == Daemon::kDante) {
    ostrevan::grpcdapi::Name name;
    return DAPIClient::GetInstance().GetName(&name);
  }
  ostrevan::networkmanager::Hostname hostname;
  return NetworkManagerClient::GetInstance().GetHostname(&hostname);
}

bool IsUnreachable(Daemon daemon, const grpc::Status& status) {
  return status.error_code() == grpc::StatusCode::UNAVAILABLE || Endpoint(daemon).empty();
}

Failure Explain(Daemon daemon, const std::string& action) {
  const std::string failed = "cannot " + action + ": " + The(daemon);
  if (IsUnreachable(daemon, Probe(daemon)))
    return {ExitStatus::kUnreachable, failed + " at " + Endpoint(daemon) + " cannot be reached",
            daemon};
  return {ExitStatus::kRejected, failed + " rejected the request, or the request failed", daemon};
}

void DoTo(const Listing& listing, Daemon daemon, const std::string& action,
          const std::function<bool()>& function) {
  try {
    Do(daemon, action, function);
  } catch (const Failure& failure) {
    if (failure.status != ExitStatus::kRejected || listing.has_object()) throw;
    throw Failure(ExitStatus::kNotFound,
                  "cannot " + action + ": not found; see 'networkgrpc " + listing.command + "'",
                  daemon);
  }
}

}  // namespace tool
