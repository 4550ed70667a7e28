// Recordings: every RPC with every kind of answer, recorded in front of a device and
// replayed byte for byte; what is passed on; redaction.
#include "simulator/recording.h"

#include <gmock/gmock.h>
#include <grpcpp/generic/generic_stub.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <future>
#include <iterator>

#include "simulator/base64.h"
#include "simulator/method_table.h"
#include "simulator/proxy.h"
#include "simulator/replay.h"
#include "simulator/simulator.h"
#include "tests/simulator/stubs.h"
#include "wire_schema/byte_buffer.h"

namespace {

using grpc::StatusCode;
using simulator::Builder;
using simulator::Daemon;
using simulator::Simulator;
using support::DanteStub;
using testing::HasSubstr;
using testing::Not;

// What a client gets, with the bytes.
struct Answer {
  StatusCode code = StatusCode::OK;
  std::string message;
  std::string reply;

  bool operator==(const Answer& other) const {
    return code == other.code && message == other.message && reply == other.reply;
  }
};

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
  return out << answer.code << ' ' << answer.message << ' ' << testing::PrintToString(answer.reply);
}

// Calls methods with bytes, without a schema and without a limit of the length.
class Client {
 public:
  explicit Client(const Simulator& device)
      : network(ChannelTo(device.NetworkManagerUrl())), dante(ChannelTo(device.DapiUrl())) {}

  Answer Call(Daemon daemon, const std::string& path, const std::string& request,
              std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    grpc::ClientContext context;
    context.set_deadline(std::chrono::system_clock::now() + limit);
    const grpc::ByteBuffer sent = wire_schema::ToByteBuffer(request);
    grpc::ByteBuffer reply;
    std::promise<grpc::Status> promise;
    (daemon == Daemon::kDapi ? dante : network)
        .UnaryCall(&context, path, {}, &sent, &reply,
                   [&](grpc::Status status) { promise.set_value(std::move(status)); });
    const grpc::Status status = promise.get_future().get();
    return {status.error_code(), status.error_message(),
            status.ok() ? wire_schema::ToString(reply) : ""};
  }

  Answer Dapi(const std::string& method, const std::string& request = "") {
    return Call(Daemon::kDapi, "/ostrevan.grpcdapi.DAPI/" + method, request);
  }

 private:
  static std::shared_ptr<grpc::Channel> ChannelTo(const std::string& url) {
    grpc::ChannelArguments arguments;
    arguments.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
    arguments.SetMaxReceiveMessageSize(-1);
    return grpc::CreateCustomChannel(url, grpc::InsecureChannelCredentials(), arguments);
  }

  grpc::GenericStub network;
  grpc::GenericStub dante;
};

class Recordings : public testing::Test {
 protected:
  Recordings() {
    std::string pattern = testing::TempDir() + "recording_test.XXXXXX";
    const int opened = mkstemp(pattern.data());
    if (opened >= 0) close(opened);
    file = pattern;
  }
  ~Recordings() override { std::remove(file.c_str()); }
  Recordings(const Recordings&) = delete;
  Recordings& operator=(const Recordings&) = delete;

  Simulator Record(const Simulator& behind, bool redacts = false) const {
    return Builder()
        .AnswerWith(std::make_shared<simulator::Proxy>(behind.NetworkManagerUrl(), behind.DapiUrl(),
                                                       file, redacts))
        .Start();
  }
  Simulator Replay() {
    replay = std::make_shared<simulator::Replay>(simulator::ReadRecording(file));
    return Builder().AnswerWith(replay).Start();
  }
  std::string Content() const {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  void Write(const std::string& content) const { std::ofstream(file) << content; }

  std::string file;
  std::shared_ptr<simulator::Replay> replay;
};

// --- Every RPC -----------------------------------------------------------------

struct Kind {
  const char* name;
  const char* fault;  // of the device behind the proxy
};

std::ostream& operator<<(std::ostream& out, const Kind& kind) { return out << kind.name; }

class EveryRpcOfRecording : public Recordings, public testing::WithParamInterface<Kind> {
 protected:
  // Of every method: field 1 is 1, an id or a flag, or of another type and skipped;
  // behind it a field that the schemas lack.
  static std::vector<Answer> CallAll(const Simulator& device) {
    Client client(device);
    std::vector<Answer> answers;
    for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDapi})
      for (const simulator::Method& method : MethodsOf(daemon))
        answers.push_back(client.Call(daemon,
                                      std::string("/") + ServiceOf(daemon) + '/' + method.name,
                                      "\x08\x01\xf8\x01\x07"));
    return answers;
  }
};

TEST_P(EveryRpcOfRecording, Replayed_AnswersByteForByte) {
  const auto start = [] {
    Builder builder;
    if (*GetParam().fault != '\0') builder.Inject(GetParam().fault);
    return builder.Start();
  };
  const Simulator direct = start();
  const Simulator behind = start();
  const std::vector<Answer> expected = CallAll(direct);
  ASSERT_EQ(expected.size(), 47U);

  EXPECT_EQ(CallAll(Record(behind)), expected);
  const std::vector<Answer> replayed = CallAll(Replay());

  ASSERT_EQ(replayed.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(replayed[i], expected[i]) << i;
  EXPECT_EQ(replay->Missing(), 0U);
}

INSTANTIATE_TEST_SUITE_P(All, EveryRpcOfRecording,
                         testing::Values(Kind{"Good", ""}, Kind{"Rejected", "*:reject"},
                                         Kind{"Status",
                                              "*:status=DATA_LOSS,message=\xc3\xbc, \" or \\"},
                                         Kind{"Unreadable", "*:malformed"}),
                         [](const auto& instance) { return instance.param.name; });

// --- What is passed on ---------------------------------------------------------

TEST_F(Recordings, MethodThatTheDaemonLacks_StatusIsPassedOnAndReplayed) {
  const Simulator behind;
  const Answer expected = Client(Record(behind)).Dapi("Bogus", "request");

  EXPECT_EQ(expected, (Answer{StatusCode::UNIMPLEMENTED, "no such method", ""}));
  EXPECT_EQ(Client(Replay()).Dapi("Bogus", "request"), expected);
  EXPECT_THAT(Content(), HasSubstr(R"("method":"/ostrevan.grpcdapi.DAPI/Bogus","request":null)"));
}

TEST_F(Recordings, MessagesLongerThanLimits_ArePassedOnAndReplayed) {
  Simulator behind = Builder().Inject("GetName:oversize").Start();
  const std::string longest(std::size_t{5} * 1024 * 1024, 'x');
  const Simulator recorder = Record(behind);
  Client client(recorder);

  const Answer reply = client.Dapi("GetName");
  const Answer request = client.Dapi("SetName", longest);

  EXPECT_EQ(reply.reply.size(), std::size_t{4} * 1024 * 1024 + 1);
  EXPECT_EQ(request.code, StatusCode::RESOURCE_EXHAUSTED);
  const Simulator replaying = Replay();
  Client again(replaying);
  EXPECT_TRUE(again.Dapi("GetName") == reply);
  EXPECT_EQ(again.Dapi("SetName", longest), request);
}

TEST_F(Recordings, DaemonIsAwayForAWhile_StatusIsPassedOnAndLaterCallsSucceed) {
  Simulator behind;
  const Simulator recorder = Record(behind);
  Client client(recorder);
  behind.StopDaemon(Daemon::kDapi);
  const Answer away = client.Dapi("GetName");
  behind.StartDaemon(Daemon::kDapi);
  Answer back = client.Dapi("GetName");
  const auto limit = support::In20Seconds();
  while (back.code == StatusCode::UNAVAILABLE && std::chrono::system_clock::now() < limit)
    back = client.Dapi("GetName");

  EXPECT_EQ(away.code, StatusCode::UNAVAILABLE);
  EXPECT_EQ(back.code, StatusCode::OK);
  EXPECT_EQ(Client(Replay()).Dapi("GetName"), away);
}

TEST_F(Recordings, ClientGivesUp_CallToTheDaemonEnds) {
  Simulator behind = Builder().Inject("GetName:freeze").Start();
  const Simulator recorder = Record(behind);

  const Answer answer = Client(recorder).Call(Daemon::kDapi, "/ostrevan.grpcdapi.DAPI/GetName", "",
                                              std::chrono::milliseconds(200));

  EXPECT_EQ(answer.code, StatusCode::DEADLINE_EXCEEDED);
  EXPECT_TRUE(behind.WaitForCalls("GetName"));
}

TEST_F(Recordings, FaultsOfTheProxy_ActAndAreRecordedAndReplayed) {
  Simulator behind;
  Simulator recorder = Record(behind);
  recorder.Inject("SetName:reject");
  recorder.Inject("GetName:drop,times=1");
  Client client(recorder);

  EXPECT_EQ(client.Dapi("SetName", "\x0a\x01x").reply, "");
  EXPECT_EQ(client.Dapi("GetName").code, StatusCode::UNAVAILABLE);

  EXPECT_EQ(behind.Calls().size(), 0U);
  EXPECT_THAT(Content(), HasSubstr("\"fault\":\"SetName:reject\""));
  EXPECT_THAT(Content(), HasSubstr("\"dropped\":true"));
  EXPECT_THROW(recorder.Set({{"dante.name", "x"}}), std::runtime_error);
  EXPECT_THROW(recorder.StateJson(), std::runtime_error);
  const Simulator replaying = Replay();
  Client again(replaying);
  EXPECT_EQ(again.Dapi("SetName", "\x0a\x01x").reply, "");
  EXPECT_EQ(again.Dapi("GetName").code, StatusCode::UNAVAILABLE);
  EXPECT_EQ(replay->Missing(), 0U);
}

// --- The order of answers ------------------------------------------------------

std::string Name(const std::string& name) {
  ostrevan::grpcdapi::Name message;
  message.set_name(name);
  return message.SerializeAsString();
}

TEST_F(Recordings, ReadsAroundChanges_ChangesAreSeenHoweverOftenItIsRead) {
  const Simulator behind;
  {
    const Simulator recorder = Record(behind);
    Client client(recorder);
    for (const char* const name : {"one", "two"}) {
      client.Dapi("GetName");
      client.Dapi("GetName");
      client.Dapi("SetName", Name(name));
    }
    client.Dapi("GetName");
  }
  const Simulator replaying = Replay();
  Client client(replaying);
  for (int time = 0; time < 5; ++time)
    EXPECT_EQ(client.Dapi("GetName").reply, Name("Amplifier-520001"));
  client.Dapi("SetName", Name("one"));
  EXPECT_EQ(client.Dapi("GetName").reply, Name("one"));
  client.Dapi("SetName", Name("two"));
  for (int time = 0; time < 5; ++time) EXPECT_EQ(client.Dapi("GetName").reply, Name("two"));

  EXPECT_EQ(replay->Missing(), 0U);
  testing::internal::CaptureStderr();
  EXPECT_EQ(client.Dapi("SetName", Name("three")).code, StatusCode::UNIMPLEMENTED);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "networkgrpc-simulator: not in the recording: DAPI.SetName\n");
  EXPECT_EQ(replay->Missing(), 1U);
}

// --- Redaction -----------------------------------------------------------------

TEST_F(Recordings, Redacted_HasNoSecretAndReplaysConsistently) {
  Simulator behind = Builder()
                         .StateJson(R"({"schema": 1, "network": {"hostname": "secret-host",
              "ntp": ["10.9.8.7", "secret.example"]}, "dante": {"name": "secret-device",
              "tx_channels": [{"id": 1, "name": "secret-label"}],
              "routing": [{"rx_channel": 1, "device": "secret-device", "channel": "secret-label"},
                          {"rx_channel": 2, "raw": {"ip": "10.9.8.7", "sip": "10.9.8.6"}}]}})")
                         .Inject("GetLatency:status=INTERNAL,message=secret path")
                         .Start();
  ostrevan::networkmanager::InterfaceConfig config;
  config.set_ip("10.9.8.7");
  config.set_netmask("255.255.0.0");
  config.mutable_wifi()->set_ssid("secret-net");
  config.mutable_wifi()->set_password("secret-password");
  const std::string unknown = "\x7a\x06secret";  // field 15
  const std::string network = "/ostrevan.networkmanager.NetworkManager/";
  {
    const Simulator recorder = Record(behind, true);
    Client client(recorder);
    for (const char* const method : {"GetName", "GetTxChannels", "GetLatency", "GetModelName"})
      client.Dapi(method);
    client.Dapi("GetRxChannelLink", "\x08\x01");
    client.Dapi("GetRxChannelLink", "\x08\x02");
    for (const char* const method : {"GetHostname", "GetNTPServer", "GetAvailableInterfaces"})
      client.Call(Daemon::kNetworkManager, network + method, "");
    client.Call(Daemon::kNetworkManager, network + "SetNetworkConfig",
                config.SerializeAsString() + unknown);
    client.Call(Daemon::kNetworkManager, network + "SetNetworkConfig", "\x0a\x7fsecret");
    client.Dapi("SecretMethod", "secret");
  }
  std::string text = Content();
  for (const simulator::RecordedCall& call : simulator::ReadRecording(file))
    text += call.request + call.outcome.reply;
  for (const char* const secret : {"secret", "10.9.8", "00:1d"})
    EXPECT_THAT(text, Not(HasSubstr(secret)));
  EXPECT_THAT(text, HasSubstr("255.255.0.0"));
  EXPECT_THAT(text, HasSubstr("lan0"));

  const Simulator replaying = Replay();
  const support::Stubs stubs(replaying.NetworkManagerUrl(), replaying.DapiUrl());
  const std::string name = support::Ask(*stubs.dante, &DanteStub::GetName).name();
  ostrevan::grpcdapi::Channel channel;
  channel.set_id(1);
  const auto link = support::Ask(*stubs.dante, &DanteStub::GetRxChannelLink, channel);
  const auto labels = support::Ask(*stubs.dante, &DanteStub::GetTxChannels);
  const auto ntp = support::Ask(*stubs.network, &support::NetworkStub::GetNTPServer);
  channel.set_id(2);
  const auto stream = support::Ask(*stubs.dante, &DanteStub::GetRxChannelLink, channel);
  EXPECT_EQ(link.devicename(), name);
  EXPECT_EQ(link.channelname(), labels.channels(0).name());
  EXPECT_EQ(ntp.servers(0), stream.raw().ip());
  EXPECT_NE(stream.raw().ip(), stream.raw().sip());
  EXPECT_EQ(support::Ask(*stubs.dante, &DanteStub::GetModelName).name(),
            behind.WithDevice([](simulator::Device& it) { return it.dante.model_name; }));
}

// --- The file ------------------------------------------------------------------

TEST_F(Recordings, Line_HasTheCallDecodedAndAsBytes) {
  const Simulator behind;
  Client(Record(behind)).Dapi("SetName", Name("Hall"));

  EXPECT_THAT(
      Content(),
      testing::MatchesRegex(
          "\\{\"recording\":1,\"redacted\":false\\}\n"
          "\\{\"number\":1,\"time\":\"20[0-9-]+T[0-9:]+\\.[0-9][0-9][0-9]Z\",\"milliseconds\":[0-9."
          "e-]+,"
          "\"method\":\"DAPI.SetName\",\"request\":\\{\"name\":\"Hall\"\\},\"request_bytes\":"
          "\"CgRIYWxs\","
          "\"fault\":null,\"status\":\"OK\",\"message\":\"\",\"reply\":\\{\"success\":true\\},"
          "\"reply_bytes\":\"CAE=\"\\}\n"));
}

TEST_F(Recordings, FileIsNoRecording_IsReportedWithItsLine) {
  const std::string header = "{\"recording\":1}\n";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"{}\n", ":1: not a recording of this version"},
      {"[]\n", ":1: not a recording of this version"},
      {"x\n", ":1: not valid JSON"},
      {header + "7\n", ":2: must be a JSON object"},
      {header + "{}\n", ":2: method: unknown method ''"},
      {header + "{\"method\":\"DAPI.Bogus\"}\n", ":2: method: unknown method 'DAPI.Bogus'"},
      {header + "{\"method\":\"DAPI.GetName\",\"reply_bytes\":\"A\"}\n",
       ":2: reply_bytes: must be base64"},
      {header + "{\"method\":\"DAPI.GetName\",\"status\":\"NO\"}\n",
       ":2: status: \"NO\" is not a gRPC status"},
      {header + "{\"method\":\"DAPI.GetName\",\"message\":1}\n", ":2: message: must be a string"}};
  for (const auto& [content, reason] : cases) {
    Write(content);
    try {
      simulator::ReadRecording(file);
      ADD_FAILURE() << content;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), file + reason);
    }
  }
}

TEST(Base64, BytesOfEveryLength_AreReadAsWritten) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(simulator::FromBase64(simulator::ToBase64(bytes)), bytes);
    bytes += static_cast<char>(255 - byte);
  }
  EXPECT_EQ(simulator::ToBase64("M"), "TQ==");
  for (const char* const bad : {"A", "AB", "ABC", "A===", "AB=C", "AB-_"})
    EXPECT_EQ(simulator::FromBase64(bad), std::nullopt) << bad;
}

}  // namespace
