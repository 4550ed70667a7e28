// Many callers at once, over all functions: every answer is right and belongs to
// its caller, every line is whole, and no request is sent twice.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <sstream>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/captured_stderr.h"
#include "support/functions.h"
#include "support/parallel.h"
#include "support/run_program.h"

namespace {

using support::DapiPath;
using support::Device;
using support::Function;
using support::NetworkManagerPath;

// Whether the daemons accept a change that is not in the table. It depends on every byte
// of the request, so that the answer to another caller is noticed.
bool IsGranted(const std::string& request) {
  unsigned sum = 0;
  for (const char c : request) sum = sum * 31 + static_cast<unsigned char>(c);
  return (sum >> 3U) % 2 == 0;
}

support::Answer Judge(const support::Step* step, const std::string& request) {
  if (step != nullptr) return {step->reply};
  return {IsGranted(request) ? std::string("\x08\x01", 2) : std::string()};
}

// A change with a value that only this caller uses.
struct Question {
  std::string request;  // as it must arrive
  bool (*ask)(const std::string& value, int number);
  std::string line;  // for a rejection
};

const std::string kSetting = "libNetworkgRPC: ERROR: error while setting ";

std::vector<Question> NetworkQuestions(const std::string& value, int number) {
  ostrevan::networkmanager::Hostname hostname;
  hostname.set_hostname(value);
  ostrevan::networkmanager::InterfaceConfig config;
  config.set_id(number);
  ostrevan::networkmanager::Id mode;
  mode.set_id(number - 1);
  return {
      {hostname.SerializeAsString(),
       [](const std::string& v, int) { return NetworkgRPC::SetHostname(v); },
       "libNetworkgRPC: SetHostname: error while requesting informations via gRPC"},
      {config.SerializeAsString(),
       [](const std::string&, int n) { return NetworkgRPC::SetGenericIP(n, {}, false); },
       kSetting + "interface " + std::to_string(number) + " network config in SetGenericIP"},
      {mode.SerializeAsString(),
       [](const std::string&, int n) { return NetworkgRPC::SetSwitchMode(n); },
       kSetting + "dante switch mode in SetSwitchMode"},
  };
}

bool SetTapping(const std::string& value, int number) {
  DantegRPC::ChannelLink record;
  record.rxChannelId = number;
  record.deviceName = record.channelName = value;
  return DantegRPC::SetTapping(record);
}

std::vector<Question> DanteQuestions(const std::string& value, int number) {
  ostrevan::grpcdapi::Name name;
  name.set_name(value);
  ostrevan::grpcdapi::Channel channel;
  channel.set_id(number);
  channel.set_name(value);
  ostrevan::grpcdapi::LinkInfo link;
  link.set_id(number);
  link.set_devicename(value);
  link.set_channelname(value);
  ostrevan::grpcdapi::Latency latency;
  latency.set_latency(static_cast<std::uint32_t>(number));
  return {
      {name.SerializeAsString(), [](const std::string& v, int) { return DantegRPC::SetName(v); },
       kSetting + "dante name in SetName"},
      {channel.SerializeAsString(),
       [](const std::string& v, int n) {
         return DantegRPC::SetTxChannelName({n, v});
       },
       kSetting + "tx channel name in SetTxChannelName"},
      {link.SerializeAsString(), SetTapping, kSetting + "rx channel link in SetTapping"},
      {latency.SerializeAsString(),
       [](const std::string&, int n) { return DantegRPC::SetLatency(n); },
       kSetting + "latency in SetLatency"},
  };
}

using Lines = std::map<std::string, int>;

void Count(const std::string& text, Lines& lines) {
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) ++lines[line];
}

// The lines and requests that the threads of one run are expected to cause.
struct Tally {
  std::mutex mutex;
  Lines lines;
  std::size_t requests = 0;

  void Add(const std::string& printed, std::size_t made) {
    const std::lock_guard<std::mutex> lock(mutex);
    Count(printed, lines);
    requests += made;
  }
};

void CallFunction(const Function& function, Tally& tally) {
  // setampname must not be called by several threads at once.
  static std::mutex ampname;
  std::unique_lock<std::mutex> lock(ampname, std::defer_lock);
  if (function.name == "setampname") lock.lock();
  std::string outputs;
  EXPECT_TRUE(function.call(outputs)) << function.name;
  EXPECT_EQ(outputs, function.outputs) << function.name;
  tally.Add(function.printed, function.steps.size());
}

void AskQuestion(int thread, int call, Tally& tally) {
  const int number = 1000 + thread * 1000 + call;
  const std::string value = std::to_string(thread) + " asks " + std::to_string(call);
  const auto questions =
      call % 4 == 1 ? NetworkQuestions(value, number) : DanteQuestions(value, number);
  const Question& question = questions[static_cast<std::size_t>(call / 4) % questions.size()];
  const bool granted = IsGranted(question.request);
  EXPECT_EQ(question.ask(value, number), granted) << question.line;
  tally.Add(granted ? "" : question.line, 1);
}

// Calls alternately a function of the table and one with a value of this caller only.
void RunLoad(int threads, int calls) {
  Device device;
  device.BuildClients();
  const auto functions = support::AllFunctions();
  ScriptAlways(device, functions, Judge);
  Tally expected;
  support::CapturedStderr captured;

  support::RunInParallel(threads, [&](int thread) {
    for (int call = 0; call < calls; ++call) {
      const auto turn = static_cast<std::size_t>(thread) * 7 + static_cast<std::size_t>(call) / 2;
      if (call % 2 == 0) {
        CallFunction(functions[turn % functions.size()], expected);
      } else {
        AskQuestion(thread, call, expected);
      }
    }
  });

  Lines printed;
  Count(captured.Take(), printed);
  EXPECT_EQ(printed, expected.lines);
  EXPECT_EQ(device.TakeRequests().size(), expected.requests);
}

TEST(Load, SixtyFourThreadsWithTwoHundredCallsEach_GetTheirOwnAnswers) { RunLoad(64, 200); }

TEST(Load, ThousandThreadsWithTwoCallsEach_GetTheirOwnAnswers) {
  if (sizeof(void*) == 4) {  // so many stacks of the usual size do not fit into the addresses
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{512} * 1024), 0);
    ASSERT_EQ(pthread_setattr_default_np(&attributes), 0);
  }
  RunLoad(1000, 2);
}

TEST(FirstCall, ThirtyTwoThreadsRaceInHundredProcesses_OneClientAndOneDiscoveryEach) {
  Device device;
  ostrevan::networkmanager::Hostname hostname;
  hostname.set_hostname("the host");
  ostrevan::grpcdapi::Name name;
  name.set_name("the module");
  device.network_manager->Script(NetworkManagerPath("GetHostname"), support::Reply(hostname));
  device.dapi->Script(DapiPath("GetName"), support::Reply(name));

  for (int process = 0; process < 100; ++process) {
    const support::Finished finished = support::Run({FIRST_CALL});

    ASSERT_EQ(finished.status, 0) << finished.out;
    ASSERT_EQ(finished.out, "32\n");
    ASSERT_EQ(finished.err, "");
    std::map<std::string, int> counts;
    for (const support::Request& request : device.TakeRequests()) ++counts[request.path];
    ASSERT_THAT(counts,
                testing::ElementsAre(testing::Pair(DapiPath("GetName"), 32),
                                     testing::Pair(NetworkManagerPath("GetAvailableInterfaces"), 1),
                                     testing::Pair(NetworkManagerPath("GetHostname"), 32)));
  }
}

}  // namespace
