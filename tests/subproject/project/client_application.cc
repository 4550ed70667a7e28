// The same with a client class.
#include <NetworkManagerClient.h>

int main() {
  ostrevan::networkmanager::Hostname hostname;
  const grpc::Status status = NetworkManagerClient::GetInstance().GetHostname(&hostname);
  return status.error_code() == grpc::StatusCode::UNAVAILABLE ? 0 : 1;
}
