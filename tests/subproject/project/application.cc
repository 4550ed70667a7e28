// Succeeds when the library answers that there is no daemon.
#include <NetworkgRPC.h>

#include <string>

int main() {
  std::string hostname = "unchanged";
  return !NetworkgRPC::GetHostname(hostname) && hostname == "unchanged" ? 0 : 1;
}
