// The buffers of the C functions, with an inaccessible page on both sides.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "NetworkgRPC_c.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"
#include "support/device.h"
#include "support/show.h"

namespace {

namespace nm = ostrevan::networkmanager;
using support::CapturedStderr;
using support::Device;
using support::NetworkManagerPath;

const support::Answer kConfirmed = {std::string("\x08\x01", 2)};

std::size_t PageSize() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

// A page between two inaccessible ones: an access beyond it ends the process.
class GuardedPage {
 public:
  /// For a buffer of `size` bytes at the start or at the end of the page.
  explicit GuardedPage(std::size_t wanted_size) : size(wanted_size) {
    void* const mapped =
        mmap(nullptr, 3 * PageSize(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED || size > PageSize()) throw std::runtime_error("cannot map pages");
    pages = static_cast<char*>(mapped);
    if (mprotect(First(), PageSize(), PROT_READ | PROT_WRITE) != 0)
      throw std::runtime_error("cannot make a page writable");
    std::memset(First(), '#', PageSize());
  }
  ~GuardedPage() { munmap(pages, 3 * PageSize()); }

  GuardedPage(const GuardedPage&) = delete;
  GuardedPage& operator=(const GuardedPage&) = delete;

  char* First() const { return pages + PageSize(); }
  char* Last() const { return pages + 2 * PageSize() - size; }

 private:
  std::size_t size;
  char* pages;
};

// A daemon whose strings are all far too long.
void ScriptHostileControl(Device& device) {
  const std::string endless(100000, 'x');
  nm::Interfaces interfaces;
  auto& control = *interfaces.add_interfaces();
  control.set_id(support::kLan1);
  control.set_name("lan1");
  control.set_mac(endless);
  nm::InterfacesConfig config;
  config.add_configs()->set_id(support::kLan1);
  nm::InterfacesStatus status;
  auto& live = *status.add_status();
  live.set_id(support::kLan1);
  live.set_ip(endless);
  live.set_netmask(endless);
  live.set_flag4(true);
  const auto script = [&](const char* method, const google::protobuf::MessageLite& reply) {
    device.network_manager->Script(NetworkManagerPath(method), support::Reply(reply));
  };
  script("GetAvailableInterfaces", interfaces);
  script("GetNetworkConfig", config);
  script("GetNetworkStatus", status);
}

TEST(ControlInterface, EndlessStrings_StayInsideTheEntry) {
  Device device;
  ScriptHostileControl(device);
  const GuardedPage page(sizeof(cInterfaceInfo));
  const std::string cut =
      "<" + std::string(15, 'x') + "." + std::string(15, 'x') + "." + std::string(17, 'x') + ".>";

  for (char* place : {page.First(), page.Last()}) {
    auto* const entry = reinterpret_cast<cInterfaceInfo*>(place);
    EXPECT_EQ(cGetControlInterface(entry, INT_MAX), 1);
    EXPECT_EQ(support::Show(*entry), cut);
  }
}

TEST(ControlInterface, NoRoom_NeedsNoBuffer) {
  Device device;
  ScriptHostileControl(device);

  for (const int max : {0, -1, INT_MIN}) EXPECT_EQ(cGetControlInterface(nullptr, max), -1);
}

TEST(CurrentSwitchMode, AtTheEndOfMemory_WritesNoByteMore) {
  Device device;
  nm::SwitchMode mode;
  mode.set_id(INT_MIN);
  device.network_manager->Script(NetworkManagerPath("GetSwitchModeStatus"), support::Reply(mode));
  const GuardedPage page(sizeof(int));
  int stored = 0;

  EXPECT_EQ(cGetCurrentSwitchMode(reinterpret_cast<int*>(page.Last())), 0);
  std::memcpy(&stored, page.Last(), sizeof stored);
  EXPECT_EQ(stored, INT_MIN);
}

class GuardedAmpname : public testing::Test {
 protected:
  GuardedAmpname() {
    device.BuildClients();
    device.network_manager->Script(NetworkManagerPath("SetHostname"), kConfirmed);
  }

  // The host name sent for a name whose last byte is the last of its page.
  std::string Sent(const std::string& name) {
    const GuardedPage page(name.size());
    std::memcpy(page.Last(), name.data(), name.size());
    const CapturedStderr captured;
    EXPECT_EQ(setampname(page.Last(), name.size()), 0);
    const auto requests = device.TakeRequests();
    nm::Hostname sent;
    EXPECT_TRUE(requests.size() == 1 && sent.ParseFromString(requests[0].bytes));
    return sent.hostname();
  }

  Device device;
};

TEST_F(GuardedAmpname, NoNulAmong255Characters_IsReadNoFurther) {
  EXPECT_EQ(Sent(std::string(255, 'A')), std::string(255, 'a'));
  EXPECT_EQ(Sent(std::string(254, 'B') + "-"), std::string(254, 'b') + "a");
}

TEST_F(GuardedAmpname, NulIsTheLastByte_IsReadNoFurther) {
  EXPECT_EQ(Sent(std::string("amp\0", 4)), "amp");
  EXPECT_EQ(Sent(std::string(1, '\0')), "unknown");
}

TEST_F(GuardedAmpname, LongOrBinaryName_SetsItsLettersAndDigits) {
  EXPECT_EQ(Sent(std::string(4000, 'C')), std::string(255, 'c'));
  EXPECT_EQ(Sent(std::string("\xff\xfe%n1\x01\0\0", 8)), "n1");
}

TEST_F(GuardedAmpname, NullName_SetsTheDefaultWhateverTheLength) {
  const CapturedStderr captured;
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, SIZE_MAX})
    EXPECT_EQ(setampname(nullptr, length), 0);
  EXPECT_EQ(device.TakeRequests().size(), 3U);
}

}  // namespace
