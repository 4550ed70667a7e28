// Exits with 0 if a call fails without a daemon.
#include <NetworkgRPC.h>

#include <string>

int main() {
  std::string hostname = "unchanged";
  return !NetworkgRPC::GetHostname(hostname) && hostname == "unchanged" ? 0 : 1;
}
