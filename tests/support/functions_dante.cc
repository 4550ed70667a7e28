// The Dante half of the table.
#include "DantegRPC.h"
#include "ostrevan/grpcdapi.pb.h"
#include "tests/support/functions.h"

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

const std::string kError = "libNetworkgRPC: ERROR: ";

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

// The five readers of identity texts, which fail in silence.
template <class Message>
Function Text(const std::string& name, bool (*call)(std::string&), const Message& reply) {
  return Reader<std::string>(name, call, "before", kAfter,
                             {Ask(DapiPath(name), Empty(), reply, "")});
}

Function Number(const std::string& name, bool (*call)(int&),
                const google::protobuf::MessageLite& reply, const std::string& line) {
  return Reader<int>(name, call, -7, 48000,
                     {Ask(DapiPath(name), Empty(), reply, kError + line + name + "\n")});
}

Function Flag(const std::string& name, bool (*call)(bool&), const std::string& rpc,
              const std::string& line) {
  return Reader<bool>(name, call, false, true,
                      {Ask(DapiPath(rpc), Empty(), On(), kError + line + name + "\n")});
}

// A flag reader whose output a failure resets: it goes in true and is true on
// success, so that only a reset makes it false.
Function ResettingFlag(const std::string& name, bool (*call)(bool&), const std::string& rpc,
                       const std::string& line) {
  Step step = Ask(DapiPath(rpc), Empty(), On(), kError + line + name + "\n");
  step.outputs = Show(false);
  Function function = Reader<bool>(name, call, true, true, {step});
  function.failed_outputs = Show(false);
  return function;
}

Function Setter(const std::string& name, std::function<bool()> call, const std::string& rpc,
                const google::protobuf::MessageLite& request, const std::string& line) {
  return Changer(name, std::move(call),
                 {Confirm(DapiPath(rpc), request, kError + line + name + "\n")});
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
      Text("GetName", &DantegRPC::GetName, MakeName(kAfter)),
      Setter(
          "SetName", [] { return DantegRPC::SetName("new"); }, "SetName", MakeName("new"),
          "error while setting dante name in "),
      Text("GetFirmwareVersion", &DantegRPC::GetFirmwareVersion, MakeVersion(kAfter)),
      Text("GetSoftwareVersion", &DantegRPC::GetSoftwareVersion, MakeVersion(kAfter)),
      Text("GetModelName", &DantegRPC::GetModelName, MakeName(kAfter)),
      Text("GetModelVersion", &DantegRPC::GetModelVersion, MakeVersion(kAfter)),
      Reader("GetAvailableSampleRates", &DantegRPC::GetAvailableSampleRates, before,
             {1, 48000, 44100},
             {Ask(DapiPath("GetAvailableSampleRates"), Empty(), rates,
                  kError + rate_line + "GetAvailableSampleRates\n")}),
      Number("GetSampleRate", &DantegRPC::GetSampleRate, rate, rate_line),
      Setter(
          "SetSampleRate", [] { return DantegRPC::SetSampleRate(48000); }, "SetSampleRate", rate,
          "error while setting sample rate in "),
      Number("GetLatency", &DantegRPC::GetLatency, latency, "error while requesting latency in "),
      Setter(
          "SetLatency", [] { return DantegRPC::SetLatency(48000); }, "SetLatency", latency,
          "error while setting latency in "),
      Flag("GetAES67Available", &DantegRPC::GetAES67Available, "GetIsAES67Available", aes67_line),
      Flag("GetAES67Status", &DantegRPC::GetAES67Status, "GetAES67Status", aes67_line),
      Setter(
          "SetAES67", [] { return DantegRPC::SetAES67(true); }, "SetAES67Status", On(),
          "error while setting aes67 status in "),
      ResettingFlag("GetDisableTx", &DantegRPC::GetDisableTx, "GetDisableTxStatus",
                    "get disable tx error "),
      Setter(
          "SetDisableTx", [] { return DantegRPC::SetDisableTx(true); }, "SetDisableTxStatus", On(),
          "set disable tx error "),
      ResettingFlag("GetPtpSlaveOnly", &DantegRPC::GetPtpSlaveOnly, "GetPtpSlaveOnlyStatus",
                    "get ptp slave only error "),
      Setter(
          "SetPtpSlaveOnly", [] { return DantegRPC::SetPtpSlaveOnly(true); },
          "SetPtpSlaveOnlyStatus", On(), "set ptp slave only error "),
      Changer("Reboot", [] { return DantegRPC::Reboot(); },
              {Confirm(NetworkManagerPath("ReloadNetworkConfig"), Empty(),
                       kError + "error while rebooting dante in Reboot\n")}),
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

const std::vector<DantegRPC::Channel> kChannelsBefore = {{9, "before"}};
const std::vector<DantegRPC::Channel> kChannelsAfter = {
    {9, "before"}, {3, "label of channel 3"}, {4, "label of channel 4"}};

Function ChannelCounts() {
  struct Counts {
    int tx;
    int rx;
    std::string Shown() const { return Show(tx) + Show(rx); }
  };
  const Counts before{-1, -2};
  Step tx = Ask(DapiPath("GetTxChannels"), Empty(), TwoChannels(),
                kError + "error while requesting tx channels in GetChannelsNum\n");
  tx.goes_on = true;
  tx.outputs = Counts{before.tx, 2}.Shown();
  Step rx = Ask(DapiPath("GetRxChannels"), Empty(), TwoChannels(),
                kError + "error while requesting rx channels in GetChannelsNum\n");
  rx.outputs = Counts{2, before.rx}.Shown();
  return {"GetChannelsNum",
          true,
          [before](std::string& outputs) {
            Counts counts = before;
            const bool done = DantegRPC::GetChannelsNum(counts.tx, counts.rx);
            outputs = counts.Shown();
            return done;
          },
          {tx, rx},
          Counts{2, 2}.Shown(),
          before.Shown()};
}

LinkInfo NamedLink() {
  LinkInfo link;
  link.set_id(99);  // the channel's own number counts, not this one
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
  const std::string line = kError + "error while requesting rx channel link in GetTapping\n";
  using Links = std::vector<DantegRPC::ChannelLink>;
  const Links before = {NamedRecord(-1)};
  const Links after_one = {NamedRecord(-1), NamedRecord(3)};
  Step second = Ask(DapiPath("GetRxChannelLink"), channels.channels(1), RawLink(), line);
  second.outputs = Show(after_one);
  return Reader<Links>(
      "GetTapping", &DantegRPC::GetTapping, before, {NamedRecord(-1), NamedRecord(3), RawRecord(4)},
      {Ask(DapiPath("GetRxChannels"), Empty(), channels,
           kError + "error while requesting rx channels list in GetTapping\n"),
       Ask(DapiPath("GetRxChannelLink"), channels.channels(0), NamedLink(), line), second});
}

std::vector<Function> ChannelsAndRouting() {
  ostrevan::grpcdapi::Channel renamed;
  renamed.set_id(3);
  renamed.set_name("new");
  LinkInfo subscribed;
  subscribed.set_id(4);
  subscribed.set_devicename("stage box, left wing");
  subscribed.set_channelname("microphone 1, lead singer");

  return {
      Reader("GetTxChannels", &DantegRPC::GetTxChannels, kChannelsBefore, kChannelsAfter,
             {Ask(DapiPath("GetTxChannels"), Empty(), TwoChannels(),
                  kError + "error while requesting tx channels list in GetTxChannels\n")}),
      Reader("GetRxChannels", &DantegRPC::GetRxChannels, kChannelsBefore, kChannelsAfter,
             {Ask(DapiPath("GetRxChannels"), Empty(), TwoChannels(),
                  kError + "error while requesting rx channels list in GetRxChannels\n")}),
      ChannelCounts(),
      Setter(
          "SetTxChannelName",
          [] {
            return DantegRPC::SetTxChannelName({3, "new"});
          },
          "SetTxChannelName", renamed, "error while setting tx channel name in "),
      Tapping(),
      Setter(
          "SetTapping", [] { return DantegRPC::SetTapping(NamedRecord(4)); }, "SetRxChannelLink",
          subscribed, "error while setting rx channel link in "),
  };
}

}  // namespace

std::vector<Function> DanteFunctions() {
  std::vector<Function> all = Settings();
  for (Function& function : ChannelsAndRouting()) all.push_back(std::move(function));
  return all;
}

}  // namespace support
