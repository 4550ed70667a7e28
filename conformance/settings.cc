// Changes: what is confirmed is there, what is rejected changes nothing.
#include "conformance/check.h"
#include "conformance/setting.h"

namespace conformance {
namespace {

using tool::Daemon;

constexpr const char* kReadBack = "A confirmed change is read back; a rejected one changes nothing";
constexpr const char* kConfirm = "reply with success true only after the change is stored";
constexpr const char* kReject =
    "reply with success false, or with a status such as NOT_FOUND or INVALID_ARGUMENT";

// True if the change is confirmed.
bool SetAndReadBack(Session& it, const Setting& setting, const Json& sent) {
  const Json before = setting.read(it, sent);
  const bool is_confirmed = it.Change(setting.method, sent);
  const Json after = setting.read(it, sent);
  if (is_confirmed)
    Expect(Holds(after, sent), setting.method + " was confirmed, but something else is there");
  else
    Expect(after == before, setting.method + " was rejected, but has changed the setting");
  return is_confirmed;
}

void SetOther(Session& it, const Setting& setting) {
  const Json other = setting.other(it, setting.read(it, nullptr));
  const bool is_confirmed = SetAndReadBack(it, setting, other);
  Expect(is_confirmed || !setting.must_accept, setting.method + " rejected a valid value");
}

// The string of a setting; the same object, if it is one of several.
void SetText(Session& it, const Setting& setting, const std::string& text) {
  Json sent = setting.read(it, nullptr);
  Json& member = sent[setting.text];
  member = member.is_array() ? Json::array({text}) : Json(text);
  SetAndReadBack(it, setting, sent);
}

void SetAnyScript(Session& it, const Setting& setting) {
  SetText(it, setting, "B\u00fchne-\u03a9-\u821e\u53f0-\U0001f3a4");
}

void SetLong(Session& it, const Setting& setting) {
  for (const std::size_t size : {64U, 255U, 1000U, 70000U})
    SetText(it, setting, std::string(size, 'x'));
}

void SetUnknown(Session& it, const Setting& setting) {
  const Json present = setting.read(it, nullptr);
  for (const int id : {-1, 1000000007}) {
    Json sent = setting.other(it, present);
    sent["id"] = id;
    Expect(!it.Change(setting.method, sent),
           setting.method + " confirmed a change of id " + std::to_string(id));
  }
  Expect(setting.read(it, present) == present, setting.method + " changed another object");
}

Check Changes(const std::string& name, Daemon daemon, const std::string& expected,
              const std::string& advice, std::function<void(Session&)> run) {
  return {name, daemon, Effect::kChanges, expected, advice, std::move(run)};
}

void AddFor(const Setting& setting, Checks& checks) {
  const auto add = [&](const char* group, const char* expected, const std::string& advice,
                       void (*run)(Session&, const Setting&)) {
    checks.push_back(Changes(group + setting.method.substr(3), DaemonOf(setting.method), expected,
                             advice, [&setting, run](Session& it) {
                               NeedAll(it, setting);
                               run(it, setting);
                             }));
  };
  add("settings.", kReadBack, kConfirm, SetOther);
  if (setting.has_id)
    add("unknown.", "A change of an id that does not exist is rejected", kReject, SetUnknown);
  if (setting.text.empty()) return;
  add("utf8.", "A string of any script is read back as it was sent, or rejected",
      "keep strings as they are; check them before they are stored", SetAnyScript);
  add("sizes.", "A long string is read back whole, or rejected",
      "reject a string that is too long; do not cut it", SetLong);
}

// Replies must stay readable, or nobody can read the setting any more.
void SetInvalidUtf8(Session& it, const char* method) {
  const Setting& setting = *FindSetting(method);
  it.SendBytes(method, std::string("\x0a\x03") + "a\xff\xfe");
  setting.read(it, nullptr);
}

void ManyServers(Session& it) {
  NeedAll(it, *FindSetting("SetNTPServer"));
  Json servers = Json::array();
  for (int i = 0; i < 300; ++i) servers.push_back("ntp" + std::to_string(i) + ".example");
  SetAndReadBack(it, *FindSetting("SetNTPServer"), {{"servers", servers}});
}

// More than gRPC servers accept by default. Whatever the answer: the next call works.
void HugeRequest(Session& it) {
  constexpr std::size_t kSize = 5U << 20U;
  const Setting& setting = *FindSetting(it.daemon == Daemon::kDante ? "SetName" : "SetHostname");
  it.Send(setting.method, {{setting.text, std::string(kSize, 'x')}});
  setting.read(it, nullptr);
}

void Unsubscribe(Session& it) {
  it.Need("settings.RxChannelLink");
  const Setting& setting = *FindSetting("SetRxChannelLink");
  const Json present = setting.read(it, nullptr);
  it.Change(setting.method, setting.other(it, present));
  Expect(it.Change(setting.method, {{"id", present["id"]}}), "the daemon rejected it");
  const Json after = setting.read(it, present);
  Expect(
      after["deviceName"] == Json("") && after["channelName"] == Json("") && after["raw"].is_null(),
      "the channel is still subscribed");
}

void Stream(Session& it) {
  it.Need("settings.RxChannelLink");
  const Setting& setting = *FindSetting("SetRxChannelLink");
  const Json raw = {{"ip", "239.69.0.1"}, {"value2", 5004}, {"value3", 48000},
                    {"value4", 2},        {"value5", 1},    {"value6", 97},
                    {"encoding", 1},      {"sessionId", 0}, {"sip", "192.0.2.20"}};
  SetAndReadBack(it, setting, {{"id", setting.read(it, nullptr)["id"]}, {"raw", raw}});
}

// A value that no daemon can apply.
void ExpectRejected(Session& it, const Setting& setting, const Json& sent) {
  NeedAll(it, setting);
  const Json before = setting.read(it, sent);
  Expect(!it.Change(setting.method, sent), "the daemon confirmed it");
  Expect(setting.read(it, sent) == before, "rejected, but the setting has changed");
}

void InvalidAddresses(Session& it) {
  const Setting& setting = *FindSetting("SetNetworkConfig");
  const Json valid = OtherAddress(it, setting.read(it, nullptr));
  for (const auto& [member, value] :
       {std::pair("ip", "192.0.2.300"), std::pair("ip", ""), std::pair("netmask", "255.0.255.0")}) {
    Json sent = valid;
    sent[member] = value;
    ExpectRejected(it, setting, sent);
  }
}

void UnknownRate(Session& it) {
  for (const Json& rate : it.Member("GetAvailableSampleRates", "sampleRates"))
    if (rate == 1) throw Skipped{"the device has the sample rate 1 Hz"};
  ExpectRejected(it, *FindSetting("SetSampleRate"), {{"sampleRate", 1}});
}

void UnavailableAes67(Session& it) {
  it.Need("lists.Aes67");
  if (it.Member("GetIsAES67Available", "status") == true) throw Skipped{"AES67 is available"};
  ExpectRejected(it, *FindSetting("SetAES67Status"), {{"status", true}});
}

// No entry of another object is passed off as that of the id.
void ReadUnknown(Session& it, const std::string& method, const char* member) {
  for (const int id : {-1, 1000000007}) {
    const bool is_list = method != "GetRoutingForInterface" && method != "GetRxChannelLink";
    const Reply reply = it.Send(method, is_list ? Json{{"ids", {id}}} : Json{{"id", id}});
    if (!reply.IsOk()) continue;
    const Json& there = reply.json[member];
    Expect(there.empty() || there == Json(""),
           "the reply has something for id " + std::to_string(id));
  }
}

Check UnknownRead(const std::string& method, const char* member) {
  return {"unknown." + method,
          DaemonOf(method),
          Effect::kReads,
          "There is no answer for an id that does not exist, or an error such as NOT_FOUND",
          "find objects by their id, not by their position",
          [method, member](Session& it) { ReadUnknown(it, method, member); }};
}

}  // namespace

Checks Settings() {
  Checks checks{UnknownRead("GetNetworkConfig", "configs"),
                UnknownRead("GetNetworkStatus", "status"),
                UnknownRead("GetRoutingForInterface", "gateway"),
                UnknownRead("GetRxChannelLink", "deviceName")};
  for (const Setting& setting : AllSettings()) AddFor(setting, checks);
  const auto add = [&checks](const char* name, Daemon daemon, const char* expected,
                             const char* advice, std::function<void(Session&)> run) {
    checks.push_back(Changes(name, daemon, expected, advice, std::move(run)));
  };
  constexpr Daemon kNetworkManager = Daemon::kNetworkManager;
  constexpr Daemon kDante = Daemon::kDante;
  constexpr const char* kReadable = "After a string that is not UTF-8, the setting can be read";
  constexpr const char* kValidate = "reject such strings; a reply that has one fails as a whole";
  add("utf8.InvalidHostname", kNetworkManager, kReadable, kValidate,
      [](Session& it) { SetInvalidUtf8(it, "SetHostname"); });
  add("utf8.InvalidName", kDante, kReadable, kValidate,
      [](Session& it) { SetInvalidUtf8(it, "SetName"); });
  add("sizes.ManyServers", kNetworkManager,
      "A list of 300 servers is read back whole and in order, or rejected",
      "reject a list that is too long; do not cut it", ManyServers);
  for (const Check& check : OfBoth({Changes(
           "sizes.HugeRequest", kDante, "A request of 5 MiB is answered, and so are calls after it",
           "limit the size of requests (SetMaxReceiveMessageSize)", HugeRequest)}))
    checks.push_back(check);
  add("settings.Unsubscribe", kDante, "SetRxChannelLink with only an id removes the subscription",
      "an empty device name and label mean no subscription", Unsubscribe);
  add("settings.Stream", kDante,
      "A subscription by address is read back with each value, also a session id of 0, or rejected",
      "keep the message raw as it came", Stream);
  add("rejected.Addresses", kNetworkManager, "Addresses that cannot be are rejected",
      "check address and netmask before they are stored; nobody else does", InvalidAddresses);
  add("rejected.SampleRate", kDante, "A sample rate that is not available is rejected", kReject,
      UnknownRate);
  add("rejected.Aes67", kDante, "AES67 cannot be switched on if it is not available", kReject,
      UnavailableAes67);
  return checks;
}

}  // namespace conformance
