// 32 threads make the first calls of the process at the same moment. Exit status 0 if each
// received its answers and all used the same two clients.
#include <atomic>
#include <cstdio>
#include <string>

#include "DAPIClient.h"
#include "DantegRPC.h"
#include "NetworkManagerClient.h"
#include "NetworkgRPC.h"
#include "support/parallel.h"

int main() {
  constexpr int kThreads = 32;
  std::vector<const NetworkManagerClient*> network_managers(kThreads);
  std::vector<const DAPIClient*> dapis(kThreads);
  std::atomic<int> right = 0;

  support::RunInParallel(kThreads, [&](int i) {
    std::string hostname;
    std::string name;
    // Half of the threads call one daemon first, half the other.
    const bool first = i % 2 == 0 && NetworkgRPC::GetHostname(hostname);
    const bool dante = DantegRPC::GetName(name);
    const bool network = first || NetworkgRPC::GetHostname(hostname);
    if (network && dante && hostname == "the host" && name == "the module") ++right;
    network_managers[static_cast<std::size_t>(i)] = &NetworkManagerClient::GetInstance();
    dapis[static_cast<std::size_t>(i)] = &DAPIClient::GetInstance();
  });

  for (const auto* client : network_managers)
    if (client != network_managers[0]) return 2;
  for (const auto* client : dapis)
    if (client != dapis[0]) return 2;
  std::printf("%d\n", right.load());
  return right == kThreads ? 0 : 1;
}
