// Events in the life of a process that uses the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/device.h"
#include "support/resident_memory.h"
#include "support/run_program.h"

namespace {

using support::DapiPath;
using support::Finished;
using support::NetworkManagerPath;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

const std::string kNetwork = "network-manager client destroyed\n";
const std::string kDante = "Dante client destroyed\n";

class Lifecycle : public testing::Test {
 protected:
  Lifecycle() {
    device.network_manager->Script(NetworkManagerPath("GetHostname"), {""});
    device.dapi->Script(DapiPath("GetName"), {""});
    ostrevan::networkmanager::SwitchMode mode;
    mode.set_id(2);
    device.network_manager->Script(NetworkManagerPath("GetSwitchModeStatus"), support::Reply(mode));
  }

  static Finished Program(const std::vector<std::string>& words) {
    std::vector<std::string> command = {PROGRAM};
    command.insert(command.end(), words.begin(), words.end());
    return support::Run(command);
  }

  support::Device device;
};

struct Ending {
  std::vector<std::string> clients;  // in the order of their first use
  std::string destroyed;
};

TEST_F(Lifecycle, Exit_DestroysTheClientsInReverseOrderOfTheirFirstUse) {
  const std::vector<Ending> endings = {{{}, ""},
                                       {{"network"}, kNetwork},
                                       {{"dante"}, kDante},
                                       {{"network", "dante"}, kDante + kNetwork},
                                       {{"dante", "network"}, kNetwork + kDante},
                                       {{"dante", "network", "dante"}, kNetwork + kDante}};
  for (const Ending& ending : endings) {
    for (const char* way : {"use", "exit"}) {
      std::vector<std::string> words = {way};
      words.insert(words.end(), ending.clients.begin(), ending.clients.end());
      SCOPED_TRACE(testing::PrintToString(words));

      const Finished finished = Program(words);

      EXPECT_EQ(finished.status, 0);
      EXPECT_EQ(finished.out, ending.destroyed);
      EXPECT_EQ(finished.err, "");
    }
  }
}

TEST_F(Lifecycle, ExitAfterTheDaemonsHaveGone_IsOrderly) {
  device.StopNetworkManager();
  device.StopDapi();

  const Finished finished = Program({"use", "network", "dante"});

  EXPECT_EQ(finished.status, 2);  // both calls failed
  EXPECT_EQ(finished.out, kDante + kNetwork);
  EXPECT_EQ(finished.err,
            "libNetworkgRPC: GetHostname: error while requesting informations via gRPC\n");
}

TEST_F(Lifecycle, LoadedAndUnloadedAThousandTimes_WorksEveryTimeAndHoldsNothingMore) {
  const Finished finished = support::Run({LOAD_PROGRAM, LIBRARY, "1000"});

  EXPECT_EQ(finished.status, 0);
  // The number of gRPC's threads varies by one or two; a leak would be hundreds.
  EXPECT_THAT(finished.out, MatchesRegex("1000 of 1000 rounds worked\n"
                                         "more threads: -?[0-4]\n"
                                         "more descriptors: 0\n"
                                         "more kilobytes: -?[0-9]+\n"));
  EXPECT_EQ(finished.err, "");
  if (support::kResidentMemoryIsMeaningful) {
    EXPECT_LT(std::atoi(finished.out.c_str() + finished.out.rfind(' ')), 2048) << finished.out;
  }
  RecordProperty("grown", finished.out);
}

TEST_F(Lifecycle, FiveThousandSignalsASecond_EveryCallSucceeds) {
  const Finished finished = Program({"signals", "5000"});

  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.out, HasSubstr("5000 of 5000 calls succeeded\n"));
  EXPECT_EQ(finished.err, "");
}

TEST_F(Lifecycle, ForkAndExec_InheritsNoDescriptorAndTheParentContinues) {
  const std::string inherited_anyway = Program({"descriptors"}).out;

  const Finished finished = Program({"fork-exec"});

  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(inherited_anyway, StartsWith("descriptors above 2:"));
  EXPECT_EQ(finished.out, inherited_anyway + kNetwork);
  EXPECT_EQ(finished.err, "");
}

// The next descriptor that gRPC opens then has the number 2, and the lines go
// there: see docs/limits.md. Which descriptor that is varies.
TEST_F(Lifecycle, StandardErrorIsClosed_ResultsStayRight) {
  const Finished finished = Program({"closed-stderr", "200"});

  EXPECT_EQ(finished.status, 0);
  EXPECT_THAT(finished.out, HasSubstr("200 of 200 results are right\n"));
  RecordProperty("descriptor", finished.out);
}

}  // namespace
