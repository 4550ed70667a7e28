// Each fault as a client meets it, and the calls that are recorded.
#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "simulator/simulated_device.h"

namespace {

using grpc::StatusCode;
using simulator::BadFault;
using testing::SizeIs;
using testing::StartsWith;

class FaultsOfDevice : public support::SimulatedDevice {
 protected:
  StatusCode GetName() {
    return support::Call(*stubs.dante, &DanteStub::GetName, {}, name).error_code();
  }
  bool SetName(const std::string& to) {
    ostrevan::grpcdapi::Name request;
    request.set_name(to);
    return Ask(&DanteStub::SetName, request).success();
  }
  // A connection takes its time to end and to be made again.
  bool GetsNameAgain() {
    for (int attempt = 0; attempt < 50; ++attempt) {
      grpc::ClientContext context;
      context.set_wait_for_ready(true);
      context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(20));
      if (stubs.dante->GetName(&context, {}, &name).ok()) return name.name() == "Amplifier-520001";
    }
    return false;
  }
  ostrevan::grpcdapi::Name name;
};

TEST_F(FaultsOfDevice, StatusTwice_ThenAnswersAsUsual) {
  device.Inject("GetName:status=DATA_LOSS,times=2");

  EXPECT_EQ(GetName(), StatusCode::DATA_LOSS);
  EXPECT_EQ(GetName(), StatusCode::DATA_LOSS);
  EXPECT_EQ(GetName(), StatusCode::OK);
  EXPECT_EQ(name.name(), "Amplifier-520001");
  EXPECT_THAT(device.ListFaults(), SizeIs(0));
}

TEST_F(FaultsOfDevice, Refuse_ChangesNothing) {
  device.Inject("DAPI.*:refuse");

  EXPECT_FALSE(SetName("refused"));

  EXPECT_EQ(GetName(), StatusCode::OK);
  EXPECT_EQ(name.name(), "Amplifier-520001");
}

TEST_F(FaultsOfDevice, EmptyReply_HasZeroValues) {
  device.Inject("GetName:empty");

  EXPECT_EQ(GetName(), StatusCode::OK);
  EXPECT_EQ(name.name(), "");
}

TEST_F(FaultsOfDevice, MalformedReply_CannotBeParsed) {
  device.Inject("DAPI.GetName:malformed");

  EXPECT_NE(GetName(), StatusCode::OK);
}

TEST_F(FaultsOfDevice, OversizeReply_ExceedsTheClientsLimit) {
  device.Inject("*:oversize,times=1");

  EXPECT_EQ(GetName(), StatusCode::RESOURCE_EXHAUSTED);
}

TEST_F(FaultsOfDevice, Delay_AnswersLateAsUsual) {
  device.Inject("SetName:delay=200");
  const auto start = std::chrono::steady_clock::now();

  EXPECT_TRUE(SetName("late"));

  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(190));
}

TEST_F(FaultsOfDevice, Freeze_Cleared_AnswersTheFrozenCall) {
  device.Inject("GetName:freeze");
  StatusCode code = StatusCode::UNKNOWN;
  std::thread client([&] { code = GetName(); });
  EXPECT_TRUE(device.WaitForCalls("GetName"));

  device.ClearFaults();

  client.join();
  EXPECT_EQ(code, StatusCode::OK);
}

TEST_F(FaultsOfDevice, Freeze_DeviceStopped_EndsTheFrozenCall) {
  device.Inject("GetName:freeze");
  StatusCode code = StatusCode::OK;
  std::thread client([&] { code = GetName(); });
  EXPECT_TRUE(device.WaitForCalls("DAPI.GetName"));

  device.Stop();

  client.join();
  EXPECT_NE(code, StatusCode::OK);
}

TEST_F(FaultsOfDevice, Drop_CutsTheConnectionAndServesTheNext) {
  device.Inject("GetName:drop,times=1");

  EXPECT_EQ(GetName(), StatusCode::UNAVAILABLE);

  EXPECT_TRUE(GetsNameAgain());
}

TEST_F(FaultsOfDevice, DaemonStopped_OnlyThatOneIsUnreachableUntilStarted) {
  device.StopDaemon(simulator::Daemon::kDapi);

  EXPECT_EQ(GetName(), StatusCode::UNAVAILABLE);
  EXPECT_EQ(Ask(&NetworkStub::GetHostname).hostname(), "amplifier");

  device.StartDaemon(simulator::Daemon::kDapi);
  EXPECT_TRUE(GetsNameAgain());
}

TEST_F(FaultsOfDevice, Calls_AreRecordedWithDecodedRequestAndFault) {
  device.Inject("SetName:refuse,times=1");

  SetName("x");
  SetName("y");

  const auto calls = device.Calls();
  ASSERT_THAT(calls, SizeIs(2));
  EXPECT_EQ(calls[0].method, "DAPI.SetName");
  EXPECT_EQ(calls[0].request, R"({"name":"x"})");
  EXPECT_EQ(calls[0].fault, "SetName:refuse,times=1");
  EXPECT_EQ(calls[1].number, 2U);
  EXPECT_EQ(calls[1].fault, "");
}

class BadFaults : public testing::TestWithParam<const char*> {};

TEST_P(BadFaults, AreRefused) { EXPECT_THROW(simulator::ParseFault(GetParam()), BadFault); }

INSTANTIATE_TEST_SUITE_P(All, BadFaults,
                         testing::Values("", "GetName", "GetName:", "GetBogus:drop",
                                         "GetName:refuse", "GetName:bogus", "GetName:status=NO",
                                         "GetName:status=OK", "GetName:drop,freeze",
                                         "GetName:delay=x", "GetName:stop", "*:stop"));

}  // namespace
