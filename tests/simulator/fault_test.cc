// Faults: their string form, and each one as a client sees it.
#include <gmock/gmock.h>

#include <unistd.h>

#include <grpcpp/create_channel.h>
#include <grpcpp/impl/codegen/client_unary_call.h>
#include <grpcpp/security/credentials.h>

#include <cstdlib>
#include <future>

#include "tests/simulator/simulated_device.h"

namespace {

using grpc::StatusCode;
using simulator::BadFault;
using simulator::Daemon;
using support::DanteStub;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kDefaultName = "Amplifier-520001";

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
  std::string NameOfModel() {
    return device.WithDevice([](simulator::Device& it) { return it.dante.name; });
  }

  // GetName in a thread of its own; the device has received it when this returns.
  // `context` can cancel it.
  std::future<StatusCode> StartGetName() {
    auto code = std::async(std::launch::async, [this] {
      return stubs.dante->GetName(&context, {}, &name).error_code();
    });
    EXPECT_TRUE(device.WaitForCalls("GetName"));
    return code;
  }

  // It takes time until a connection has ended and a new one is made.
  bool GetsNameAgain() {
    for (int attempt = 0; attempt < 50; ++attempt) {
      grpc::ClientContext patient;
      patient.set_wait_for_ready(true);
      patient.set_deadline(support::In20Seconds());
      if (stubs.dante->GetName(&patient, {}, &name).ok()) return name.name() == kDefaultName;
    }
    return false;
  }
  static bool Connects(const std::string& url) {
    return support::ChannelTo(url)->WaitForConnected(support::In20Seconds());
  }

  grpc::ClientContext context;
  ostrevan::grpcdapi::Name name;
};

// --- Replies and statuses ------------------------------------------------------

struct Outcome {
  const char* fault;
  std::vector<StatusCode> of_get_name;  // of the first call, of the second, ...
  StatusCode of_get_hostname;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) { return out << outcome.fault; }

class FaultOutcomes : public FaultsOfDevice, public testing::WithParamInterface<Outcome> {};

TEST_P(FaultOutcomes, CallsOfBothDaemons_HaveTheirStatus) {
  device.Inject(GetParam().fault);

  for (const StatusCode expected : GetParam().of_get_name) EXPECT_EQ(GetName(), expected);
  EXPECT_EQ(GetHostname(), GetParam().of_get_hostname);
}

INSTANTIATE_TEST_SUITE_P(
    All, FaultOutcomes,
    testing::Values(
        Outcome{"GetName:status=DATA_LOSS,times=2",
                {StatusCode::DATA_LOSS, StatusCode::DATA_LOSS, StatusCode::OK},
                StatusCode::OK},
        Outcome{"*:status=ABORTED", {StatusCode::ABORTED}, StatusCode::ABORTED},
        Outcome{"NetworkManager.*:status=ABORTED", {StatusCode::OK}, StatusCode::ABORTED},
        Outcome{"GetName:status=ABORTED,delay=1,times=1",
                {StatusCode::ABORTED, StatusCode::OK},
                StatusCode::OK},
        Outcome{
            "*:oversize,times=1", {StatusCode::RESOURCE_EXHAUSTED, StatusCode::OK}, StatusCode::OK},
        Outcome{"GetName:drop,times=1", {StatusCode::UNAVAILABLE}, StatusCode::OK},
        Outcome{"DAPI.*:stop", {StatusCode::UNAVAILABLE}, StatusCode::OK},
        Outcome{"DAPI.*:reject", {StatusCode::OK}, StatusCode::OK}));

TEST_F(FaultsOfDevice, StatusWithMessage_ClientReceivesIt) {
  device.Inject("GetName:status=ABORTED,message=restarting, come back=later");

  EXPECT_EQ(CallGetName().error_message(), "restarting, come back=later");
}

TEST_F(FaultsOfDevice, TwoForOneMethod_FirstActsUntilItsTimesAreOver) {
  device.Inject("GetName:status=ABORTED,times=1");
  device.Inject("*:status=DATA_LOSS");

  EXPECT_EQ(GetName(), StatusCode::ABORTED);
  EXPECT_EQ(GetName(), StatusCode::DATA_LOSS);
  EXPECT_THAT(device.ListFaults(), SizeIs(1));
}

TEST_F(FaultsOfDevice, OneCleared_OthersStay) {
  device.Inject("*:status=ABORTED");
  device.Inject("GetName:status=DATA_LOSS");

  device.ClearFaults("*");

  EXPECT_EQ(GetHostname(), StatusCode::OK);
  EXPECT_EQ(GetName(), StatusCode::DATA_LOSS);
  EXPECT_THROW(device.ClearFaults("GetBogus"), BadFault);
}

TEST_F(FaultsOfDevice, Reject_RepliesFalseAndChangesNothing) {
  device.Inject("DAPI.*:reject");

  EXPECT_FALSE(SetName("rejected"));

  EXPECT_EQ(NameOfModel(), kDefaultName);
}

TEST_F(FaultsOfDevice, Ignore_RepliesTrueAndChangesNothing) {
  device.Inject("DAPI.*:ignore");

  EXPECT_TRUE(SetName("ignored"));

  EXPECT_EQ(NameOfModel(), kDefaultName);
  EXPECT_EQ(GetName(), StatusCode::OK);
  EXPECT_EQ(name.name(), kDefaultName);
}

TEST_F(FaultsOfDevice, Answer_ReplacesFieldsAndStatusOfTheReply) {
  device.Inject(R"(GetName:answer={"name":"a, \"}"},times=1)");
  device.Inject(R"(SetName:answer={"success":false})");
  device.Inject(R"(GetRxChannelLink:answer={"deviceName":"x"})");

  EXPECT_EQ(GetName(), StatusCode::OK);
  EXPECT_EQ(name.name(), "a, \"}");
  EXPECT_FALSE(SetName("changed"));
  EXPECT_EQ(NameOfModel(), "changed");
  ostrevan::grpcdapi::Channel unknown;
  unknown.set_id(99);
  EXPECT_EQ(Ask(&DanteStub::GetRxChannelLink, unknown).devicename(), "x");
}

TEST_F(FaultsOfDevice, Request_ReplacesFieldsThatTheDeviceReceives) {
  device.Inject(R"(SetName:request={"name":"x"},when={"name":"this"})");

  EXPECT_TRUE(SetName("this"));
  EXPECT_EQ(NameOfModel(), "x");
  EXPECT_TRUE(SetName("that"));
  EXPECT_EQ(NameOfModel(), "that");
}

TEST_F(FaultsOfDevice, After_FirstCallsAreAnsweredAsUsual) {
  device.Inject("GetName:status=ABORTED,after=2,times=1");

  for (const StatusCode expected :
       {StatusCode::OK, StatusCode::OK, StatusCode::ABORTED, StatusCode::OK})
    EXPECT_EQ(GetName(), expected);
}

TEST_F(FaultsOfDevice, Then_DeviceReceivesThatCallNext) {
  device.Inject("SetName:then=FactoryReset");
  device.WithDevice([](simulator::Device& it) { it.network.hostname = "before"; });

  EXPECT_TRUE(SetName("changed"));

  EXPECT_EQ(NameOfModel(), "changed");
  EXPECT_EQ(device.WithDevice([](simulator::Device& it) { return it.network.hostname; }),
            "amplifier");
}

TEST_F(FaultsOfDevice, PathThatTheSchemasLack_FaultApplies) {
  const auto call = [&](const std::string& path) {
    const auto channel = support::ChannelTo(device.DapiUrl());
    grpc::ClientContext patient;
    ostrevan::common::Empty reply;
    const grpc::internal::RpcMethod method(path.c_str(), grpc::internal::RpcMethod::NORMAL_RPC);
    return grpc::internal::BlockingUnaryCall(channel.get(), method, &patient,
                                             ostrevan::common::Empty(), &reply)
        .error_code();
  };
  device.Inject("/a.B/C:empty,times=1");

  EXPECT_EQ(call("/a.B/D"), StatusCode::UNIMPLEMENTED);
  EXPECT_EQ(call("/a.B/C"), StatusCode::OK);
  EXPECT_EQ(call("/a.B/C"), StatusCode::UNIMPLEMENTED);
}

TEST_F(FaultsOfDevice, Goaway_IdleConnectionIsClosedUntilCleared) {
  const auto closes = [&](std::chrono::milliseconds limit) {
    grpc::ChannelArguments own;
    own.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
    const auto channel =
        grpc::CreateCustomChannel(device.DapiUrl(), grpc::InsecureChannelCredentials(), own);
    EXPECT_TRUE(channel->WaitForConnected(support::In20Seconds()));
    return channel->WaitForStateChange(GRPC_CHANNEL_READY,
                                       std::chrono::system_clock::now() + limit);
  };
  device.Inject("DAPI.*:goaway,delay=50");
  EXPECT_TRUE(closes(std::chrono::seconds(20)));

  device.ClearFaults();

  EXPECT_FALSE(closes(std::chrono::milliseconds(300)));
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

TEST_F(FaultsOfDevice, DelayOver_AnswersAsUsual) {
  device.Inject("SetName:delay=1");

  EXPECT_TRUE(SetName("late"));
  EXPECT_EQ(NameOfModel(), "late");
}

// --- Calls that wait -----------------------------------------------------------

class WaitingCalls : public FaultsOfDevice, public testing::WithParamInterface<const char*> {};

TEST_P(WaitingCalls, ClientCancels_CallEndsAndDeviceServesOthers) {
  device.Inject(GetParam());
  auto code = StartGetName();
  Ask(&DanteStub::GetModelName);

  context.TryCancel();

  EXPECT_EQ(code.get(), StatusCode::CANCELLED);
  device.ClearFaults();
  EXPECT_EQ(GetName(), StatusCode::OK);
}

TEST_P(WaitingCalls, DeviceStopped_CallFails) {
  device.Inject(GetParam());
  auto code = StartGetName();

  device.Stop();

  EXPECT_NE(code.get(), StatusCode::OK);
}

INSTANTIATE_TEST_SUITE_P(All, WaitingCalls,
                         testing::Values("GetName:delay=3600000", "GetName:freeze",
                                         "GetName:freeze,delay=3600000"));

TEST_F(FaultsOfDevice, DelayOfAnHour_ClientCancels_ChangesNothing) {
  device.Inject("SetName:delay=3600000");
  ostrevan::grpcdapi::Success reply;
  auto code = std::async(std::launch::async,
                         [&] { return stubs.dante->SetName(&context, {}, &reply).error_code(); });
  EXPECT_TRUE(device.WaitForCalls("SetName"));

  context.TryCancel();

  EXPECT_EQ(code.get(), StatusCode::CANCELLED);
  EXPECT_EQ(NameOfModel(), kDefaultName);
}

class Thaws : public FaultsOfDevice, public testing::WithParamInterface<const char*> {};

TEST_P(Thaws, ClearedByItsMethodAfterAnother_CallIsAnsweredThen) {
  device.Inject(GetParam());
  device.Inject("SetName:reject");
  auto code = StartGetName();

  device.ClearFaults("SetName");
  device.WithDevice([](simulator::Device& it) { it.dante.name = "thawed"; });
  device.ClearFaults("GetName");

  EXPECT_EQ(code.get(), StatusCode::OK);
  EXPECT_EQ(name.name(), "thawed");
}

INSTANTIATE_TEST_SUITE_P(All, Thaws,
                         testing::Values("GetName:freeze", "GetName:freeze,times=1",
                                         "GetName:freeze,delay=200"));

TEST_F(FaultsOfDevice, Freeze_AllCleared_AnswersTheCall) {
  device.Inject("*:freeze");
  auto code = StartGetName();

  device.ClearFaults();

  EXPECT_EQ(code.get(), StatusCode::OK);
}

// --- Connections and daemons ---------------------------------------------------

TEST_F(FaultsOfDevice, Drop_ServesTheNextConnection) {
  device.Inject("GetName:drop,times=1");

  EXPECT_EQ(GetName(), StatusCode::UNAVAILABLE);

  EXPECT_TRUE(GetsNameAgain());
}

TEST_F(FaultsOfDevice, ConnectionsDropped_EndsCallsOfThatDaemonOnly) {
  device.Inject("*:freeze");
  auto dante = StartGetName();
  auto network = std::async(std::launch::async, [this] { return GetHostname(); });
  EXPECT_TRUE(device.WaitForCalls("GetHostname"));

  device.DropConnections(Daemon::kDapi);

  EXPECT_EQ(dante.get(), StatusCode::UNAVAILABLE);
  device.ClearFaults();
  EXPECT_EQ(network.get(), StatusCode::OK);
  EXPECT_TRUE(GetsNameAgain());
}

// The clients' ends of Unix sockets have no names by which they could be found.
TEST(FaultsOnUnixSockets, Drop_EndsTheConnectionOfTheCallOnly) {
  std::string folder = testing::TempDir() + "fault_test.XXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  simulator::Simulator device =
      simulator::Builder().Sockets(folder + "/network", folder + "/dapi").Start();
  grpc::ChannelArguments alone;  // a connection of its own
  alone.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
  const auto connect = [&] {
    return ostrevan::grpcdapi::DAPI::NewStub(
        grpc::CreateCustomChannel(device.DapiUrl(), grpc::InsecureChannelCredentials(), alone));
  };
  const auto first = connect();
  const auto second = connect();
  const auto get_name = [](DanteStub& stub) {
    ostrevan::grpcdapi::Name name;
    return support::Call(stub, &DanteStub::GetName, {}, name).error_code();
  };
  device.Inject("GetName:freeze,times=1");
  auto frozen = std::async(std::launch::async, [&] { return get_name(*first); });
  EXPECT_TRUE(device.WaitForCalls("GetName"));
  device.Inject("GetName:drop,times=1");

  EXPECT_EQ(get_name(*second), StatusCode::UNAVAILABLE);
  device.ClearFaults("GetName");
  EXPECT_EQ(frozen.get(), StatusCode::OK);

  device.Inject("GetName:freeze");
  frozen = std::async(std::launch::async, [&] { return get_name(*first); });
  EXPECT_TRUE(device.WaitForCalls("GetName", 3));
  device.DropConnections(Daemon::kDapi);
  EXPECT_EQ(frozen.get(), StatusCode::UNAVAILABLE);

  device.Stop();
  EXPECT_EQ(rmdir(folder.c_str()), 0) << "a socket is left";
}

TEST_F(FaultsOfDevice, StopInjected_PortIsFreeUntilItIsCleared) {
  device.Inject("NetworkManager.*:stop");

  device.ClearFaults("GetName");  // no fault was given for it
  EXPECT_EQ(GetHostname(), StatusCode::UNAVAILABLE);
  const std::string url = device.NetworkManagerUrl();
  const int port = std::stoi(url.substr(url.rfind(':') + 1));
  EXPECT_NO_THROW(simulator::Simulator({port, 0, 1, 1}));

  device.ClearFaults("NetworkManager.*");
  EXPECT_TRUE(Connects(url));
  EXPECT_THAT(device.ListFaults(), IsEmpty());
}

TEST_F(FaultsOfDevice, DaemonStoppedTwice_IsListedOnceAndStartsAtOnce) {
  device.StopDaemon(Daemon::kDapi);
  device.StopDaemon(Daemon::kDapi);
  EXPECT_EQ(GetName(), StatusCode::UNAVAILABLE);
  EXPECT_EQ(GetHostname(), StatusCode::OK);
  EXPECT_THAT(device.ListFaults(), SizeIs(1));

  device.StartDaemon(Daemon::kDapi);

  EXPECT_TRUE(GetsNameAgain());
  EXPECT_THAT(device.ListFaults(), IsEmpty());
}

TEST_F(FaultsOfDevice, BothDaemonsStopped_AllClearedStartsBoth) {
  device.StopDaemon(Daemon::kNetworkManager);
  device.StopDaemon(Daemon::kDapi);
  EXPECT_THAT(device.ListFaults(), SizeIs(2));

  device.ClearFaults();

  EXPECT_TRUE(Connects(device.NetworkManagerUrl()));
  EXPECT_TRUE(Connects(device.DapiUrl()));
}

// --- The string form -----------------------------------------------------------

class FaultStrings : public testing::TestWithParam<const char*> {};

TEST_P(FaultStrings, Parsed_AreWrittenTheSame) {
  EXPECT_EQ(ToString(simulator::ParseFault(GetParam())), GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, FaultStrings,
                         testing::Values("GetName:status=UNAUTHENTICATED",
                                         "DAPI.GetName:status=CANCELLED,delay=5,times=4294967295",
                                         "*:status=ABORTED,message=a, b=c:d", "SetName:reject",
                                         "SetHostname:reject", "DAPI.*:reject", "*:empty",
                                         "GetName:malformed", "GetName:oversize,times=1",
                                         "NetworkManager.*:freeze", "GetName:drop", "DAPI.*:stop",
                                         "*:delay=250", "SetName:ignore", "DAPI.*:goaway,delay=1",
                                         "/a.B/C:empty", "SetName:then=ReloadNTPConfig",
                                         R"(GetName:after=1,times=1,answer={"name":"{,\"\\"})",
                                         R"(SetName:when={"name":"a"},request={"name":"b"})"));

class BadFaultStrings : public testing::TestWithParam<const char*> {};

TEST_P(BadFaultStrings, AreRejected) { EXPECT_THROW(simulator::ParseFault(GetParam()), BadFault); }

INSTANTIATE_TEST_SUITE_P(
    All, BadFaultStrings,
    testing::Values("", "GetName", "GetName:", "GetBogus:drop", "GetName:reject", "GetName:bogus",
                    "GetName:status=NO", "GetName:status=OK", "GetName:drop,freeze",
                    "GetName:delay=x", "GetName:drop,times=1x", "GetName:delay=-1",
                    "GetName:times=2", "GetName:delay=4294967296", "GetName:bogus=1",
                    "GetName:status", "GetName:none", "GetName:stop", "*:stop",
                    "DAPI.*:stop,times=1", "DAPI.*:stop,delay=1", "NetworkManager.GetName:drop",
                    "getname:drop", "GetName:drop,message=x", "GetName:message=x",
                    "GetName:drop,status=ABORTED", "GetName:ignore", "GetName:goaway,delay=1",
                    "DAPI.*:goaway", "DAPI.*:goaway,delay=1,times=1", "GetName:answer=x",
                    "GetName:answer={", "GetName:answer={\"nam\":\"\"}",
                    "GetName:answer={\"name\":1}", "DAPI.*:answer={\"name\":\"\"}",
                    "SetName:request={\"id\":1}", "SetName:drop,when={\"id\":1}",
                    "SetName:reject,answer={}", "/a.B/C:answer={}", "/a.B/C:reject",
                    "SetName:then=SetName", "SetName:then=", "SetName:when={}"));

TEST(Faults, StatusCodeThatGrpcLacks_IsRejected) {
  for (const int code : {-1, 17}) {
    simulator::Fault fault;
    fault.method = "GetName";
    fault.kind = simulator::FaultKind::kStatus;
    fault.status = code;
    EXPECT_THROW(Check(fault), BadFault) << code;
  }
}

}  // namespace
