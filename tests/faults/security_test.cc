// What another user of the device, or a hostile daemon, can do: the facts behind
// docs/security.md.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"
#include "support/device.h"
#include "tests/faults/parallel_processes.h"

namespace {

using support::Device;
using support::NetworkManagerPath;

// One process waits until another one sends.
class Event {
 public:
  Event() { EXPECT_EQ(pipe(ends.data()), 0); }
  ~Event() {
    close(ends[0]);
    close(ends[1]);
  }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  void Send() { EXPECT_EQ(write(ends[1], "!", 1), 1); }
  void Wait() {
    char received = 0;
    EXPECT_EQ(read(ends[0], &received, 1), 1);
  }

 private:
  std::array<int, 2> ends{};
};

// A daemon listens on a Unix socket in a folder of its own.
class UnixSocket : public testing::Test {
 protected:
  void SetUp() override {
    std::string made = testing::TempDir() + "security-XXXXXX";
    EXPECT_NE(mkdtemp(made.data()), nullptr);
    folder = made;
    setenv("network_manager_url", ("unix:" + Socket().string()).c_str(), 1);
  }
  void TearDown() override {
    chmod(folder.c_str(), S_IRWXU);
    std::filesystem::remove_all(folder);
  }

  std::filesystem::path Socket() const { return folder / "daemon.sock"; }

  // Whether another user's call is answered, given these permissions of the folder.
  // Run by root, the calling process becomes the user nobody. Run by any other user, it
  // keeps its user: the permissions are tested for all users alike.
  bool AnswersAnotherUser(mode_t permissions) {
    Event serving;
    Event called;
    const faults::ResultCounts counts =
        faults::RunInParallelProcesses({{"the daemon",
                                         [&](faults::ResultCounts&) {
                                           Serve(permissions);
                                           serving.Send();
                                           called.Wait();
                                         }},
                                        {"another user", [&](faults::ResultCounts& counted) {
                                           serving.Wait();
                                           counted.Count("call", CallAsAnotherUser(), "");
                                           called.Send();
                                         }}});
    EXPECT_EQ(counts.cases, 1) << counts.failures;
    return counts.as_expected == 1;
  }

 private:
  void Serve(mode_t permissions) {
    daemon = std::make_unique<support::ScriptedDaemon>("unix:" + Socket().string());
    ostrevan::networkmanager::Hostname reply;
    daemon->Script(NetworkManagerPath("GetHostname"), support::Reply(reply));
    EXPECT_EQ(chmod(Socket().c_str(), 0666), 0);
    EXPECT_EQ(chmod(folder.c_str(), permissions), 0);
  }

  static bool CallAsAnotherUser() {
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0 && setuid(kNobody) != 0) throw std::runtime_error("cannot become nobody");
    const support::CapturedStderr captured;
    std::string name;
    return NetworkgRPC::GetHostname(name);
  }

  std::filesystem::path folder;
  std::unique_ptr<support::ScriptedDaemon> daemon;
};

TEST_F(UnixSocket, FolderIsOpen_AnswersAnotherUser) { EXPECT_TRUE(AnswersAnotherUser(0777)); }

TEST_F(UnixSocket, FolderIsClosed_DoesNotAnswerAnotherUser) { EXPECT_FALSE(AnswersAnotherUser(0)); }

// The largest resident memory of this process so far, in KiB.
long PeakKib() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("VmHWM:", 0) == 0) return std::stol(line.substr(6));
  return 0;
}

// The most entries that fit into a reply of the largest size: two bytes each.
TEST(LargestList, OfEmptyEntries_IsReadWhole) {
  using namespace std::string_literals;
  constexpr std::size_t kEntries = 4194304 / 2;
  Device device;
  support::Answer answer;
  for (std::size_t i = 0; i < kEntries; ++i) answer.bytes += "\x0a\0"s;
  device.dapi->Script(support::DapiPath("GetTxChannels"), answer);
  const long before = PeakKib();

  std::vector<DantegRPC::Channel> channels;
  EXPECT_TRUE(DantegRPC::GetTxChannels(channels));

  EXPECT_EQ(channels.size(), kEntries);
  std::printf("%zu empty entries: %ld KiB more at the peak\n", kEntries, PeakKib() - before);
}

}  // namespace
