// Each fault as a client meets it, and the calls that are recorded.
#include <gmock/gmock.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/generic/generic_stub.h>
#include <grpcpp/security/credentials.h>
#include <grpcpp/support/byte_buffer.h>

#include <chrono>
#include <future>
#include <thread>

#include "simulator/loopback_port.h"
#include "tests/simulator/simulated_device.h"

namespace {

using grpc::StatusCode;
using simulator::BadFault;
using simulator::Daemon;
using testing::IsEmpty;
using testing::SizeIs;

class FaultsOfDevice : public support::SimulatedDevice {
 protected:
  grpc::Status CallGetName() { return support::Call(*stubs.dante, &DanteStub::GetName, {}, name); }
  StatusCode GetName() { return CallGetName().error_code(); }
  StatusCode GetHostname() {
    ostrevan::networkmanager::Hostname hostname;
    return support::Call(*stubs.network, &NetworkStub::GetHostname, {}, hostname).error_code();
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
  static bool Connects(const std::string& url) {
    return grpc::CreateChannel(url, grpc::InsecureChannelCredentials())
        ->WaitForConnected(std::chrono::system_clock::now() + std::chrono::seconds(20));
  }
  // Calls a method of the Dante API daemon with these bytes.
  StatusCode CallWithBytes(const std::string& method, const std::string& bytes) {
    grpc::GenericStub stub(
        grpc::CreateChannel(device.DapiUrl(), grpc::InsecureChannelCredentials()));
    const grpc::Slice slice(bytes);
    const grpc::ByteBuffer request(&slice, 1);
    grpc::ByteBuffer reply;
    grpc::ClientContext context;
    context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(20));
    std::promise<grpc::Status> status;
    stub.UnaryCall(&context, "/ostrevan.grpcdapi.DAPI/" + method, {}, &request, &reply,
                   [&](grpc::Status ended) { status.set_value(std::move(ended)); });
    return status.get_future().get().error_code();
  }
  std::string ModelName() {
    return device.WithDevice([](simulator::Device& it) { return it.dante.name; });
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

TEST_F(FaultsOfDevice, StatusWithMessage_TellsIt) {
  device.Inject("GetName:status=ABORTED,message=restarting, come back=later");

  const grpc::Status status = CallGetName();

  EXPECT_EQ(status.error_code(), StatusCode::ABORTED);
  EXPECT_EQ(status.error_message(), "restarting, come back=later");
}

TEST_F(FaultsOfDevice, TwoForOneMethod_TheFirstActsUntilItIsUsedUp) {
  device.Inject("GetName:status=ABORTED,times=1");
  device.Inject("*:status=DATA_LOSS");

  EXPECT_EQ(GetName(), StatusCode::ABORTED);
  EXPECT_EQ(GetName(), StatusCode::DATA_LOSS);
  EXPECT_EQ(GetHostname(), StatusCode::DATA_LOSS);
}

TEST_F(FaultsOfDevice, ForOneDaemon_TheOtherAnswersAsUsual) {
  device.Inject("NetworkManager.*:status=ABORTED");

  EXPECT_EQ(GetHostname(), StatusCode::ABORTED);
  EXPECT_EQ(GetName(), StatusCode::OK);
}

TEST_F(FaultsOfDevice, OneCleared_TheOthersStay) {
  device.Inject("*:status=ABORTED");
  device.Inject("GetName:status=DATA_LOSS");

  device.ClearFaults("*");

  EXPECT_EQ(GetHostname(), StatusCode::OK);
  EXPECT_EQ(GetName(), StatusCode::DATA_LOSS);
  EXPECT_THROW(device.ClearFaults("GetBogus"), BadFault);
}

TEST_F(FaultsOfDevice, CodeThatGrpcLacks_IsRefused) {
  for (const int code : {-1, 17}) {
    simulator::Fault fault;
    fault.method = "GetName";
    fault.kind = simulator::FaultKind::kStatus;
    fault.status = code;
    EXPECT_THROW(device.Inject(fault), BadFault) << code;
  }
  EXPECT_THAT(device.ListFaults(), IsEmpty());
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

TEST_F(FaultsOfDevice, DelayOver_AnswersAsUsual) {
  device.Inject("SetName:delay=1");

  EXPECT_TRUE(SetName("late"));
  EXPECT_EQ(ModelName(), "late");
}

TEST_F(FaultsOfDevice, DelayAndStatus_BothAct) {
  device.Inject("GetName:status=ABORTED,delay=1,times=1");

  EXPECT_EQ(GetName(), StatusCode::ABORTED);
  EXPECT_EQ(GetName(), StatusCode::OK);
}

TEST_F(FaultsOfDevice, DelayOfAnHour_ClientGivesUp_ChangesNothing) {
  device.Inject("SetName:delay=3600000");
  ostrevan::grpcdapi::Name request;
  request.set_name("late");
  ostrevan::grpcdapi::Success reply;
  grpc::ClientContext context;
  std::promise<StatusCode> code;
  std::thread client(
      [&] { code.set_value(stubs.dante->SetName(&context, request, &reply).error_code()); });
  EXPECT_TRUE(device.WaitForCalls("SetName"));
  EXPECT_EQ(GetName(), StatusCode::OK);  // others are answered meanwhile

  context.TryCancel();

  client.join();
  EXPECT_EQ(code.get_future().get(), StatusCode::CANCELLED);
  EXPECT_EQ(ModelName(), "Amplifier-520001");
}

TEST_F(FaultsOfDevice, DelayOfAnHour_DeviceStopped_EndsTheCall) {
  device.Inject("GetName:delay=3600000");
  StatusCode code = StatusCode::OK;
  std::thread client([&] { code = GetName(); });
  EXPECT_TRUE(device.WaitForCalls("GetName"));

  device.Stop();

  client.join();
  EXPECT_NE(code, StatusCode::OK);
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

TEST_F(FaultsOfDevice, Freeze_AnotherFaultCleared_StaysFrozen) {
  device.Inject("GetName:freeze,times=1");
  device.Inject("SetName:refuse");
  StatusCode code = StatusCode::UNKNOWN;
  std::thread client([&] { code = GetName(); });
  EXPECT_TRUE(device.WaitForCalls("GetName"));

  device.ClearFaults("SetName");
  device.WithDevice([](simulator::Device& it) { it.dante.name = "thawed"; });
  device.ClearFaults("GetName");

  client.join();
  EXPECT_EQ(code, StatusCode::OK);
  EXPECT_EQ(name.name(), "thawed");
}

TEST_F(FaultsOfDevice, Freeze_ClientGivesUp_TheDeviceServesOnAndThaws) {
  device.Inject("GetName:freeze");
  grpc::ClientContext context;
  std::promise<StatusCode> code;
  std::thread client(
      [&] { code.set_value(stubs.dante->GetName(&context, {}, &name).error_code()); });
  EXPECT_TRUE(device.WaitForCalls("GetName"));

  context.TryCancel();

  client.join();
  EXPECT_EQ(code.get_future().get(), StatusCode::CANCELLED);
  device.ClearFaults();
  EXPECT_EQ(GetName(), StatusCode::OK);
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

TEST_F(FaultsOfDevice, ConnectionsDropped_EndsCallsOfThatDaemonOnly) {
  device.Inject("*:freeze");
  StatusCode dante = StatusCode::UNKNOWN;
  StatusCode network = StatusCode::UNKNOWN;
  std::thread dante_client([&] { dante = GetName(); });
  std::thread network_client([&] { network = GetHostname(); });
  EXPECT_TRUE(device.WaitForCalls("GetName"));
  EXPECT_TRUE(device.WaitForCalls("GetHostname"));

  device.DropConnections(Daemon::kDapi);

  dante_client.join();
  EXPECT_EQ(dante, StatusCode::UNAVAILABLE);
  device.ClearFaults();
  network_client.join();
  EXPECT_EQ(network, StatusCode::OK);
  EXPECT_TRUE(GetsNameAgain());
}

TEST_F(FaultsOfDevice, StopInjected_IsListedAndTakenBackByClearing) {
  device.Inject("NetworkManager.*:stop");

  EXPECT_EQ(GetHostname(), StatusCode::UNAVAILABLE);
  EXPECT_EQ(GetName(), StatusCode::OK);
  device.ClearFaults("GetName");  // not told, hence nothing to take back
  const std::string url = device.NetworkManagerUrl();
  EXPECT_NO_THROW(simulator::RequireFreePort(std::stoi(url.substr(url.rfind(':') + 1))));
  ASSERT_THAT(device.ListFaults(), SizeIs(1));

  device.ClearFaults("NetworkManager.*");

  EXPECT_TRUE(Connects(device.NetworkManagerUrl()));
  EXPECT_THAT(device.ListFaults(), IsEmpty());
}

TEST_F(FaultsOfDevice, DaemonStoppedTwice_StartsAtOnce) {
  device.StopDaemon(Daemon::kDapi);
  device.StopDaemon(Daemon::kDapi);
  EXPECT_THAT(device.ListFaults(), SizeIs(1));

  device.StartDaemon(Daemon::kDapi);

  EXPECT_TRUE(Connects(device.DapiUrl()));
  EXPECT_THAT(device.ListFaults(), IsEmpty());
}

TEST_F(FaultsOfDevice, BothDaemonsStopped_AreListedAndClearedTogether) {
  device.StopDaemon(Daemon::kNetworkManager);
  device.StopDaemon(Daemon::kDapi);

  EXPECT_THAT(device.ListFaults(), SizeIs(2));
  EXPECT_EQ(GetName(), StatusCode::UNAVAILABLE);
  EXPECT_EQ(GetHostname(), StatusCode::UNAVAILABLE);

  device.ClearFaults();
  EXPECT_TRUE(Connects(device.NetworkManagerUrl()));
  EXPECT_TRUE(Connects(device.DapiUrl()));
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
  EXPECT_EQ(calls[0].number, 1U);
  EXPECT_EQ(calls[1].number, 2U);
  EXPECT_EQ(calls[1].fault, "");
}

TEST_F(FaultsOfDevice, CallsForgotten_TheNextOneKeepsItsNumber) {
  GetName();

  device.ForgetCalls();
  EXPECT_FALSE(device.WaitForCalls("GetName", 1, std::chrono::milliseconds(0)));
  GetHostname();

  const auto calls = device.Calls();
  ASSERT_THAT(calls, SizeIs(1));
  EXPECT_EQ(calls[0].number, 2U);
  EXPECT_EQ(calls[0].method, "NetworkManager.GetHostname");
}

TEST_F(FaultsOfDevice, WaitForCalls_CountsThoseOfTheMethodAlone) {
  constexpr std::chrono::milliseconds kNow{0};
  GetName();
  GetName();
  GetHostname();

  EXPECT_TRUE(device.WaitForCalls("GetName", 2, kNow));
  EXPECT_FALSE(device.WaitForCalls("GetName", 3, kNow));
  EXPECT_TRUE(device.WaitForCalls("DAPI.*", 2, kNow));
  EXPECT_FALSE(device.WaitForCalls("DAPI.*", 3, kNow));
  EXPECT_TRUE(device.WaitForCalls("NetworkManager.GetHostname", 1, kNow));
  EXPECT_FALSE(device.WaitForCalls("DAPI.GetHostname", 1, kNow));
  EXPECT_TRUE(device.WaitForCalls("*", 3, kNow));
}

TEST_F(FaultsOfDevice, RequestThatCannotBeParsed_IsAnsweredSoAndRecordedAsNull) {
  EXPECT_EQ(CallWithBytes("SetName", "\x0a\x7f"), StatusCode::INTERNAL);
  EXPECT_EQ(CallWithBytes("SetName", "\x0a\x01\xff"), StatusCode::INTERNAL);  // no UTF-8

  for (const auto& call : device.Calls()) EXPECT_EQ(call.request, "null");
  EXPECT_THAT(device.Calls(), SizeIs(2));
  EXPECT_EQ(ModelName(), "Amplifier-520001");
}

TEST_F(FaultsOfDevice, MethodThatNoDaemonHas_IsUnimplementedAlsoUnderAFault) {
  device.Inject("*:status=ABORTED");

  EXPECT_EQ(CallWithBytes("GetBogus", ""), StatusCode::UNIMPLEMENTED);
  EXPECT_EQ(CallWithBytes("GetHostname", ""), StatusCode::UNIMPLEMENTED);
  EXPECT_THAT(device.Calls(), IsEmpty());
}

TEST(Faults, MoreCallsThanAreKept_ForgetsTheOldest) {
  simulator::Faults faults;
  for (int i = 0; i < 10002; ++i) faults.Record({0, "DAPI.GetName", "{}", ""});

  const auto calls = faults.Calls();
  ASSERT_THAT(calls, SizeIs(10000));
  EXPECT_EQ(calls.front().number, 3U);
  EXPECT_EQ(calls.back().number, 10002U);
}

class FaultTexts : public testing::TestWithParam<const char*> {};

TEST_P(FaultTexts, AreWrittenAsTheyAreRead) {
  EXPECT_EQ(ToText(simulator::ParseFault(GetParam())), GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, FaultTexts,
                         testing::Values("GetName:status=UNAUTHENTICATED",
                                         "DAPI.GetName:status=CANCELLED,delay=5,times=4294967295",
                                         "*:status=ABORTED,message=a, b=c:d", "SetName:refuse",
                                         "SetHostname:refuse", "DAPI.*:refuse", "*:empty",
                                         "GetName:malformed", "GetName:oversize,times=1",
                                         "NetworkManager.*:freeze", "GetName:drop", "DAPI.*:stop",
                                         "*:delay=250"));

class BadFaults : public testing::TestWithParam<const char*> {};

TEST_P(BadFaults, AreRefused) { EXPECT_THROW(simulator::ParseFault(GetParam()), BadFault); }

INSTANTIATE_TEST_SUITE_P(
    All, BadFaults,
    testing::Values("", "GetName", "GetName:", "GetBogus:drop", "GetName:refuse", "GetName:bogus",
                    "GetName:status=NO", "GetName:status=OK", "GetName:drop,freeze",
                    "GetName:delay=x", "GetName:drop,times=1x", "GetName:delay=-1",
                    "GetName:times=2", "GetName:delay=4294967296", "GetName:bogus=1",
                    "GetName:status", "GetName:none", "GetName:stop", "*:stop",
                    "DAPI.*:stop,times=1", "DAPI.*:stop,delay=1", "NetworkManager.GetName:drop",
                    "getname:drop", "GetName:drop,message=x", "GetName:message=x",
                    "GetName:drop,status=ABORTED"));

}  // namespace
