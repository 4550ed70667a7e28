// The Dante half of the tables: the functions of DantegRPC and the RPCs of the Dante API
// daemon.
#include "DantegRPC.h"
#include "ostrevan/grpcdapi.pb.h"
#include "support/functions.h"
#include "support/rpcs.h"

namespace support {
namespace {

using ostrevan::common::Empty;
using ostrevan::grpcdapi::AvailableSampleRates;
using ostrevan::grpcdapi::Channels;
using ostrevan::grpcdapi::Latency;
using ostrevan::grpcdapi::LinkInfo;
using ostrevan::grpcdapi::Name;
using ostrevan::grpcdapi::SampleRate;
using ostrevan::grpcdapi::Status;
using ostrevan::grpcdapi::Version;

std::string ErrorLine(const std::string& rest) { return "libNetworkgRPC: ERROR: " + rest + "\n"; }

Name MakeName(const std::string& text) {
  Name name;
  name.set_name(text);
  return name;
}

Version MakeVersion(const std::string& text) {
  Version version;
  version.set_version(text);
  return version;
}

Status On() {
  Status status;
  status.set_status(true);
  return status;
}

// One of the five readers of identity strings, which fail silently.
template <bool (*call)(std::string&)>
Function String(const std::string& name, const google::protobuf::MessageLite& reply) {
  return Reader<call>(name, "before", kAfter, {ReadStep(DapiPath(name), Empty(), reply, "")});
}

template <bool (*call)(int&)>
Function Number(const std::string& name, const google::protobuf::MessageLite& reply,
                const std::string& line) {
  return WithNameOnlyExceptionLine(Reader<call>(
      name, -7, 48000, {ReadStep(DapiPath(name), Empty(), reply, ErrorLine(line + name))}));
}

template <bool (*call)(bool&)>
Function Flag(const std::string& name, const std::string& rpc, const std::string& line) {
  return WithNameOnlyExceptionLine(Reader<call>(
      name, false, true, {ReadStep(DapiPath(rpc), Empty(), On(), ErrorLine(line + name))}));
}

// A flag reader that sets its output to false on failure. The output is true before and
// after success, so that only a reset makes it false.
template <bool (*call)(bool&)>
Function ResettingFlag(const std::string& name, const std::string& rpc, const std::string& line) {
  Step step = ReadStep(DapiPath(rpc), Empty(), On(), ErrorLine(line + name));
  step.outputs = Show(false);
  Function function = Reader<call>(name, true, true, {step});
  function.failed_outputs = Show(false);
  return WithNameOnlyExceptionLine(function);
}

// A reader of a list: one allocation, and one for each long name.
template <auto call>
Function List(const std::string& name, const OutputOf<call>& before, const OutputOf<call>& after,
              std::vector<Step> steps, std::size_t long_names) {
  Function function = Reader<call>(name, before, after, std::move(steps));
  function.heap_copies = 1 + long_names;
  return WithNameOnlyExceptionLine(function);
}

Function Setter(const std::string& name, bool (*call)(), const std::string& rpc,
                const google::protobuf::MessageLite& request, const std::string& line) {
  return Changer(name, call, {ChangeStep(DapiPath(rpc), request, ErrorLine(line + name))});
}

std::vector<Function> Settings() {
  AvailableSampleRates rates;
  rates.add_samplerates(48000);
  rates.add_samplerates(44100);
  SampleRate rate;
  rate.set_samplerate(48000);
  Latency latency;
  latency.set_latency(48000);
  const std::string rate_line = "error while requesting available or current sample rate in ";
  const std::string aes67_line = "error while requesting available or status AES67 in ";
  const std::vector<int> before = {1};

  return {
      String<&DantegRPC::GetName>("GetName", MakeName(kAfter)),
      Setter(
          "SetName", [] { return DantegRPC::SetName("new"); }, "SetName", MakeName("new"),
          "error while setting dante name in "),
      String<&DantegRPC::GetFirmwareVersion>("GetFirmwareVersion", MakeVersion(kAfter)),
      String<&DantegRPC::GetSoftwareVersion>("GetSoftwareVersion", MakeVersion(kAfter)),
      String<&DantegRPC::GetModelName>("GetModelName", MakeName(kAfter)),
      String<&DantegRPC::GetModelVersion>("GetModelVersion", MakeVersion(kAfter)),
      List<&DantegRPC::GetAvailableSampleRates>(
          "GetAvailableSampleRates", before, {1, 48000, 44100},
          {ReadStep(DapiPath("GetAvailableSampleRates"), Empty(), rates,
                    ErrorLine(rate_line + "GetAvailableSampleRates"))},
          0),
      Number<&DantegRPC::GetSampleRate>("GetSampleRate", rate, rate_line),
      Setter(
          "SetSampleRate", [] { return DantegRPC::SetSampleRate(48000); }, "SetSampleRate", rate,
          "error while setting sample rate in "),
      Number<&DantegRPC::GetLatency>("GetLatency", latency, "error while requesting latency in "),
      Setter(
          "SetLatency", [] { return DantegRPC::SetLatency(48000); }, "SetLatency", latency,
          "error while setting latency in "),
      Flag<&DantegRPC::GetAES67Available>("GetAES67Available", "GetIsAES67Available", aes67_line),
      Flag<&DantegRPC::GetAES67Status>("GetAES67Status", "GetAES67Status", aes67_line),
      Setter(
          "SetAES67", [] { return DantegRPC::SetAES67(true); }, "SetAES67Status", On(),
          "error while setting aes67 status in "),
      ResettingFlag<&DantegRPC::GetDisableTx>("GetDisableTx", "GetDisableTxStatus",
                                              "get disable tx error "),
      WithNameOnlyExceptionLine(Setter(
          "SetDisableTx", [] { return DantegRPC::SetDisableTx(true); }, "SetDisableTxStatus", On(),
          "set disable tx error ")),
      ResettingFlag<&DantegRPC::GetPtpSlaveOnly>("GetPtpSlaveOnly", "GetPtpSlaveOnlyStatus",
                                                 "get ptp slave only error "),
      WithNameOnlyExceptionLine(Setter(
          "SetPtpSlaveOnly", [] { return DantegRPC::SetPtpSlaveOnly(true); },
          "SetPtpSlaveOnlyStatus", On(), "set ptp slave only error ")),
      Changer("Reboot", &DantegRPC::Reboot,
              {ChangeStep(NetworkManagerPath("ReloadNetworkConfig"), Empty(),
                          ErrorLine("error while rebooting dante in Reboot"))}),
  };
}

Channels TwoChannels() {
  Channels channels;
  for (const int id : {3, 4}) {
    auto& channel = *channels.add_channels();
    channel.set_id(id);
    channel.set_name("label of channel " + std::to_string(id));
    channel.set_defaultname("default " + std::to_string(id));
  }
  return channels;
}

// The outputs of the one function that has two.
struct Counts {
  int tx = 0;
  int rx = 0;
};
using support::Show;
std::string Show(const Counts& counts) {
  return support::Show(counts.tx) + support::Show(counts.rx);
}

bool CountChannels(Counts& counts) { return DantegRPC::GetChannelsNum(counts.tx, counts.rx); }

Function ChannelCounts() {
  const Counts before{-1, -2};
  Step tx = ReadStep(DapiPath("GetTxChannels"), Empty(), TwoChannels(),
                     ErrorLine("error while requesting tx channels in GetChannelsNum"));
  tx.continues = true;
  tx.outputs = Show(Counts{before.tx, 2});
  Step rx = ReadStep(DapiPath("GetRxChannels"), Empty(), TwoChannels(),
                     ErrorLine("error while requesting rx channels in GetChannelsNum"));
  rx.outputs = Show(Counts{2, before.rx});
  return WithNameOnlyExceptionLine(
      Reader<&CountChannels>("GetChannelsNum", before, {2, 2}, {tx, rx}));
}

LinkInfo NamedLink() {
  LinkInfo link;
  link.set_id(99);  // ignored: the number of the channel is used
  link.set_devicename("stage box, left wing");
  link.set_channelname("microphone 1, lead singer");
  link.set_flag5(true);
  return link;
}

LinkInfo RawLink() {
  LinkInfo link;
  auto& raw = *link.mutable_raw();
  raw.set_ip("239.69.1.2");
  raw.set_value2(22);
  raw.set_value3(33);
  raw.set_value4(44);
  raw.set_value5(55);
  raw.set_value6(66);
  raw.set_encoding(ostrevan::grpcdapi::L16);
  raw.set_sessionid(88);
  raw.set_sip("10.0.0.9");
  return link;
}

DantegRPC::ChannelLink NamedRecord(int rx) {
  DantegRPC::ChannelLink record;
  record.rxChannelId = rx;
  record.channelName = "microphone 1, lead singer";
  record.deviceName = "stage box, left wing";
  return record;
}

DantegRPC::ChannelLink RawRecord(int rx) {
  DantegRPC::ChannelLink record;
  record.rxChannelId = rx;
  record.isRaw = true;
  record.ip = "239.69.1.2";
  record.value2 = 22;
  record.value3 = 33;
  record.value4 = 44;
  record.value5 = 55;
  record.value6 = 66;
  record.encoding = 1;
  record.sip = "10.0.0.9";
  record.hasSessionId = true;
  record.sessionId = 88;
  return record;
}

Function Tapping() {
  const Channels channels = TwoChannels();
  const std::string line = ErrorLine("error while requesting rx channel link in GetTapping");
  using Links = std::vector<DantegRPC::ChannelLink>;
  const Links before = {NamedRecord(-1)};
  const Links after_one = {NamedRecord(-1), NamedRecord(3)};
  Step second = ReadStep(DapiPath("GetRxChannelLink"), channels.channels(1), RawLink(), line);
  second.outputs = Show(after_one);
  return List<&DantegRPC::GetTapping>(
      "GetTapping", before, {NamedRecord(-1), NamedRecord(3), RawRecord(4)},
      {ReadStep(DapiPath("GetRxChannels"), Empty(), channels,
                ErrorLine("error while requesting rx channels list in GetTapping")),
       ReadStep(DapiPath("GetRxChannelLink"), channels.channels(0), NamedLink(), line), second},
      2);
}

std::vector<Function> ChannelsAndRouting() {
  ostrevan::grpcdapi::Channel renamed;
  renamed.set_id(3);
  renamed.set_name("new");
  LinkInfo subscribed;
  subscribed.set_id(4);
  subscribed.set_devicename("stage box, left wing");
  subscribed.set_channelname("microphone 1, lead singer");

  const std::vector<DantegRPC::Channel> before = {{9, "before"}};
  const std::vector<DantegRPC::Channel> after = {
      {9, "before"}, {3, "label of channel 3"}, {4, "label of channel 4"}};

  return {
      List<&DantegRPC::GetTxChannels>(
          "GetTxChannels", before, after,
          {ReadStep(DapiPath("GetTxChannels"), Empty(), TwoChannels(),
                    ErrorLine("error while requesting tx channels list in GetTxChannels"))},
          2),
      List<&DantegRPC::GetRxChannels>(
          "GetRxChannels", before, after,
          {ReadStep(DapiPath("GetRxChannels"), Empty(), TwoChannels(),
                    ErrorLine("error while requesting rx channels list in GetRxChannels"))},
          2),
      ChannelCounts(),
      Setter(
          "SetTxChannelName",
          [] {
            return DantegRPC::SetTxChannelName({3, "new"});
          },
          "SetTxChannelName", renamed, "error while setting tx channel name in "),
      Tapping(),
      Setter(
          "SetTapping",
          [] {
            static const DantegRPC::ChannelLink link = NamedRecord(4);  // made once
            return DantegRPC::SetTapping(link);
          },
          "SetRxChannelLink", subscribed, "error while setting rx channel link in "),
  };
}

}  // namespace

std::vector<Function> DanteFunctions() {
  std::vector<Function> all = Settings();
  for (Function& function : ChannelsAndRouting()) all.push_back(std::move(function));
  return all;
}

std::vector<Rpc> DapiRpcs() {
  using Stub = ostrevan::grpcdapi::DAPI::Stub;
  using Client = DAPIClient;
  const auto make = [](const char* method, auto... methods) {
    return MakeRpc(DapiPath(method), &DaemonStubs::dante, methods...);
  };
  return {
      make("GetName", &Stub::GetName, &Client::GetName),
      make("SetName", &Stub::SetName, &Client::SetName),
      make("GetTxChannels", &Stub::GetTxChannels, &Client::GetTxChannels),
      make("GetRxChannels", &Stub::GetRxChannels, &Client::GetRxChannels),
      make("SetTxChannelName", &Stub::SetTxChannelName, &Client::SetTxChannelName),
      make("SetRxChannelName", &Stub::SetRxChannelName),
      make("GetRxChannelLink", &Stub::GetRxChannelLink, &Client::GetRxChannelLink),
      make("SetRxChannelLink", &Stub::SetRxChannelLink, &Client::SetRxChannelLink),
      make("GetLatency", &Stub::GetLatency, &Client::GetLatency),
      make("GetMinLatency", &Stub::GetMinLatency),
      make("SetLatency", &Stub::SetLatency, &Client::SetLatency),
      make("GetSoftwareVersion", &Stub::GetSoftwareVersion, &Client::GetSoftwareVersion),
      make("GetFirmwareVersion", &Stub::GetFirmwareVersion, &Client::GetFirmwareVersion),
      make("GetAvailableSampleRates", &Stub::GetAvailableSampleRates,
           &Client::GetAvailableSampleRates),
      make("GetSampleRate", &Stub::GetSampleRate, &Client::GetSampleRate),
      make("SetSampleRate", &Stub::SetSampleRate, &Client::SetSampleRate),
      make("GetIsAES67Available", &Stub::GetIsAES67Available, &Client::GetIsAES67Available),
      make("GetAES67Status", &Stub::GetAES67Status, &Client::GetAES67Status),
      make("SetAES67Status", &Stub::SetAES67Status, &Client::SetAES67Status),
      make("GetManufacturerName", &Stub::GetManufacturerName, &Client::GetManufacturerName),
      make("GetModelName", &Stub::GetModelName, &Client::GetModelName),
      make("GetModelVersion", &Stub::GetModelVersion, &Client::GetModelVersion),
      make("GetPtpConfig", &Stub::GetPtpConfig),
      make("GetPtpStatus", &Stub::GetPtpStatus),
      make("Reconnect", &Stub::Reconnect),
      make("GetDisableTxStatus", &Stub::GetDisableTxStatus, &Client::GetDisableTxStatus),
      make("SetDisableTxStatus", &Stub::SetDisableTxStatus, &Client::SetDisableTxStatus),
      make("GetPtpSlaveOnlyStatus", &Stub::GetPtpSlaveOnlyStatus, &Client::GetPtpSlaveOnlyStatus),
      make("SetPtpSlaveOnlyStatus", &Stub::SetPtpSlaveOnlyStatus, &Client::SetPtpSlaveOnlyStatus),
  };
}

}  // namespace support
