// Whom the library trusts, and what somebody else on the device can do: the
// facts behind docs/security.md.
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
#include "tests/faults/apart.h"
#include "tests/support/captured_stderr.h"
#include "tests/support/device.h"

namespace {

using support::Device;
using support::NetworkManagerPath;

// Lets one process wait for another.
class Signal {
 public:
  Signal() { EXPECT_EQ(pipe(ends.data()), 0); }
  ~Signal() {
    close(ends[0]);
    close(ends[1]);
  }
  Signal(const Signal&) = delete;
  Signal& operator=(const Signal&) = delete;

  void Give() { EXPECT_EQ(write(ends[1], "!", 1), 1); }
  void Wait() {
    char sign = 0;
    EXPECT_EQ(read(ends[0], &sign, 1), 1);
  }

 private:
  std::array<int, 2> ends{};
};

// A socket of a daemon in a folder of its own, which only its user can enter.
class UnixSocket : public testing::Test {
 protected:
  void SetUp() override {
    std::string made = testing::TempDir() + "boundary-XXXXXX";
    EXPECT_NE(mkdtemp(made.data()), nullptr);
    folder = made;
    setenv("network_manager_url", ("unix:" + Socket().string()).c_str(), 1);
  }
  void TearDown() override {
    chmod(folder.c_str(), S_IRWXU);
    std::filesystem::remove_all(folder);
  }

  std::filesystem::path Socket() const { return folder / "daemon.sock"; }

  // Whether another user's call is answered, with these permissions of the folder.
  // The superuser, whom no permission stops, becomes somebody else for it; any
  // other user stands for somebody else, as the permissions are those of nobody.
  bool AnswersSomebodyElse(mode_t permissions) {
    Signal serving;
    Signal asked;
    const faults::Tally tally =
        faults::RunApart({{"the daemon",
                           [&](faults::Tally&) {
                             Serve(permissions);
                             serving.Give();
                             asked.Wait();
                           }},
                          {"somebody else", [&](faults::Tally& counted) {
                             serving.Wait();
                             counted.Count("call", AsksAsSomebodyElse(), "");
                             asked.Give();
                           }}});
    EXPECT_EQ(tally.cases, 1) << tally.failures;
    return tally.as_expected == 1;
  }

 private:
  void Serve(mode_t permissions) {
    daemon = std::make_unique<support::ScriptedDaemon>("unix:" + Socket().string());
    ostrevan::networkmanager::Hostname reply;
    daemon->Script(NetworkManagerPath("GetHostname"), support::Reply(reply));
    EXPECT_EQ(chmod(Socket().c_str(), 0666), 0);
    EXPECT_EQ(chmod(folder.c_str(), permissions), 0);
  }

  static bool AsksAsSomebodyElse() {
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0 && setuid(kNobody) != 0) throw std::runtime_error("cannot become nobody");
    const support::CapturedStderr captured;
    std::string name;
    return NetworkgRPC::GetHostname(name);
  }

  std::filesystem::path folder;
  std::unique_ptr<support::ScriptedDaemon> daemon;
};

TEST_F(UnixSocket, FolderIsOpen_AnswersSomebodyElse) { EXPECT_TRUE(AnswersSomebodyElse(0777)); }

TEST_F(UnixSocket, FolderIsClosed_DoesNotAnswerSomebodyElse) {
  EXPECT_FALSE(AnswersSomebodyElse(0));
}

// The most memory that this process has had so far.
long PeakKib() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("VmHWM:", 0) == 0) return std::stol(line.substr(6));
  return 0;
}

// The most entries that fit into the largest reply: two bytes each.
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
