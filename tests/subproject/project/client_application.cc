// The same through the client, whose instance it shares with the library.
#include <NetworkManagerClient.h>

int main() {
  ostrevan::networkmanager::Hostname hostname;
  const grpc::Status status = NetworkManagerClient::GetInstance().GetHostname(&hostname);
  return status.error_code() == grpc::StatusCode::UNAVAILABLE ? 0 : 1;
}
