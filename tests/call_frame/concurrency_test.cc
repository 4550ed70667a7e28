// Many threads at once: one client per daemon, every answer reaches its caller, and
// lines are whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "support/captured_stderr.h"
#include "support/device.h"
#include "support/parallel.h"
#include "support/show.h"

namespace {

using support::DapiPath;
using support::Device;
using support::NetworkManagerPath;
using support::RunInParallel;

TEST(FirstUse, FromManyThreads_BuildsOneClientWithOneDiscovery) {
  Device device;
  ostrevan::networkmanager::Hostname reply;
  reply.set_hostname("amp");
  device.network_manager->Script(NetworkManagerPath("GetHostname"), support::Reply(reply));
  std::vector<NetworkManagerClient*> clients(32);
  std::vector<std::string> hostnames(32);

  RunInParallel(32, [&](int i) {
    const auto slot = static_cast<std::size_t>(i);
    EXPECT_TRUE(NetworkgRPC::GetHostname(hostnames[slot]));
    clients[slot] = &NetworkManagerClient::GetInstance();
  });

  EXPECT_EQ(hostnames, std::vector<std::string>(32, "amp"));
  EXPECT_EQ(std::count(clients.begin(), clients.end(), clients[0]), 32);
  const auto requests = device.network_manager->TakeRequests();
  EXPECT_EQ(std::count_if(requests.begin(), requests.end(),
                          [](const support::Request& request) {
                            return request.path == NetworkManagerPath("GetAvailableInterfaces");
                          }),
            1);
  EXPECT_EQ(requests.size(), 33U);
}

TEST(ManyCallers, EachGetsTheAnswerToItsOwnQuestion) {
  Device device;
  device.BuildClients();
  ostrevan::networkmanager::Success yes;
  yes.set_success(true);
  device.network_manager->Script(NetworkManagerPath("SetHostname"), support::Reply(yes));
  ostrevan::grpcdapi::Success no;
  device.dapi->Script(DapiPath("SetName"), support::Reply(no));
  support::CapturedStderr captured;

  RunInParallel(16, [&](int i) {
    for (int k = 0; k < 50; ++k) {
      const std::string name = std::to_string(i) + "." + std::to_string(k);
      EXPECT_TRUE(NetworkgRPC::SetHostname(name));
      EXPECT_FALSE(DantegRPC::SetName(name));
    }
  });

  const std::string whole = "libNetworkgRPC: ERROR: error while setting dante name in SetName";
  std::istringstream lines(captured.Take());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_EQ(line, whole);
  EXPECT_EQ(count, 16 * 50);
}

}  // namespace
