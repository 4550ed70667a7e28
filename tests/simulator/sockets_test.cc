// What any local process can do to the sockets of the program: use up its file
// descriptors, and send slowly.
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <csignal>
#include <optional>
#include <thread>

#include "simulator/descriptor.h"
#include "tests/simulator/program_in_folder.h"
#include "tests/simulator/stubs.h"

namespace {

using simulator::Descriptor;
using support::Port;
using support::ProgramInFolder;
using support::SimulatorProcess;
using testing::StartsWith;

// The limit of file descriptors of the programs that are started while it lives.
class DescriptorLimit {
 public:
  explicit DescriptorLimit(rlim_t most) {
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit limit{most, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &before); }
  DescriptorLimit(const DescriptorLimit&) = delete;
  DescriptorLimit& operator=(const DescriptorLimit&) = delete;

 private:
  rlimit before{};
};

Descriptor Connect(const std::string& url) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(Port(url))));
  Descriptor file(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  EXPECT_EQ(connect(file.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  return file;
}

Descriptor ConnectToControl(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
  Descriptor file(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  EXPECT_EQ(connect(file.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  return file;
}

// Waits until the other side has closed the connection; false after 20 seconds
// without anything from it.
bool IsClosed(const Descriptor& file) {
  std::array<char, 4096> part{};
  pollfd awaited{file.Get(), POLLIN, 0};
  while (poll(&awaited, 1, 20000) == 1)
    if (recv(file.Get(), part.data(), part.size(), 0) <= 0) return true;
  return false;
}

// More connections than a program with this limit can accept.
std::vector<Descriptor> UseUp(rlim_t limit, const std::string& url) {
  std::vector<Descriptor> connections;
  for (rlim_t i = 0; i <= limit; ++i) connections.push_back(Connect(url));
  EXPECT_TRUE(IsClosed(connections.back())) << "the program accepts it or is deaf";
  return connections;
}

// Calls until the daemon can be reached, for 20 seconds at most.
grpc::StatusCode CallWhenReady(const std::string& url) {
  const auto stub = ostrevan::grpcdapi::DAPI::NewStub(support::ChannelTo(url));
  grpc::ClientContext context;
  context.set_deadline(support::In20Seconds());
  context.set_wait_for_ready(true);
  ostrevan::grpcdapi::Name name;
  return stub->GetName(&context, {}, &name).error_code();
}

constexpr rlim_t kFewDescriptors = 64;

TEST(Sockets, DescriptorsUsedUp_RejectsConnectionsUntilSomeAreFree) {
  std::optional<DescriptorLimit> limit(kFewDescriptors);
  SimulatorProcess simulator;
  limit.reset();
  for (int time = 0; time < 2; ++time) {
    std::vector<Descriptor> connections = UseUp(kFewDescriptors, simulator.DapiUrl());
    connections.clear();

    EXPECT_EQ(CallWhenReady(simulator.DapiUrl()), grpc::StatusCode::OK);
  }
  EXPECT_EQ(simulator.End(SIGTERM), 0);
}

TEST_F(ProgramInFolder, DescriptorsUsedUp_CtlWorksAndCanFreeThem) {
  std::optional<DescriptorLimit> limit(kFewDescriptors);
  SimulatorProcess simulator({"--control", Path("control")});
  limit.reset();
  const std::vector<Descriptor> connections = UseUp(kFewDescriptors, simulator.DapiUrl());
  EXPECT_EQ(Ctl({"faults"}), "");

  EXPECT_EQ(Ctl({"drop", "DAPI"}), "");

  for (const Descriptor& connection : connections) EXPECT_TRUE(IsClosed(connection));
  EXPECT_EQ(CallWhenReady(simulator.DapiUrl()), grpc::StatusCode::OK);
  EXPECT_EQ(simulator.End(SIGTERM), 0);
}

// Sends a byte every 100 ms, without an end, until the other side closes.
void Drip(const Descriptor& connection) {
  pollfd awaited{connection.Get(), POLLIN, 0};
  while (send(connection.Get(), "{", 1, MSG_NOSIGNAL) == 1 && poll(&awaited, 1, 100) == 0) {
  }
}

TEST_F(ProgramInFolder, ControlClientsDrip_HoldUpNeitherOthersNorTheEnd) {
  SimulatorProcess simulator({"--control", Path("control")});
  std::vector<Descriptor> connections;
  std::vector<std::thread> clients;
  for (int i = 0; i < 3; ++i) connections.push_back(ConnectToControl(Path("control")));
  for (const Descriptor& connection : connections) clients.emplace_back([&] { Drip(connection); });

  EXPECT_EQ(Ctl({"faults"}), "");
  for (std::thread& client : clients) client.join();  // each is closed after its time

  const Descriptor last = ConnectToControl(Path("control"));
  std::thread client([&] { Drip(last); });
  EXPECT_EQ(Ctl({"faults"}), "");  // after it
  EXPECT_EQ(simulator.End(SIGTERM), 0);
  client.join();
}

TEST_F(ProgramInFolder, ControlClientsOfEveryKind_AreServedOrClosed) {
  const SimulatorProcess simulator({"--control", Path("control")});
  const std::string deep = "{\"command\": " + std::string(60000, '[') + '\n';
  for (const std::string& request : {std::string("\n"), std::string("[]\n"), deep}) {
    const Descriptor client = ConnectToControl(Path("control"));
    EXPECT_EQ(send(client.Get(), request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
    std::array<char, 12> answer{};
    EXPECT_EQ(recv(client.Get(), answer.data(), answer.size(), MSG_WAITALL), 12);
    EXPECT_THAT((std::string{answer.data(), answer.size()}), StartsWith("{\"ok\":false"));
  }
  const Descriptor longest = ConnectToControl(Path("control"));
  const std::string request(100000, 'x');
  send(longest.Get(), request.data(), request.size(), MSG_NOSIGNAL);
  EXPECT_TRUE(IsClosed(longest));
  EXPECT_EQ(Ctl({"faults"}), "");
}

}  // namespace
