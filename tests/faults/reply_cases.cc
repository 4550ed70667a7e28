#include "tests/faults/reply_cases.h"

#include <map>
#include <set>

#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "support/show.h"

namespace faults {
namespace {

using support::Answer;
using support::Function;
using support::NetworkManagerPath;
using support::Show;
using Strings = std::vector<std::string>;

constexpr int kAdded = 10000;
constexpr int kFirstAdded = 1000;

ReplyCase WithAnswer(const Function& function, std::size_t k, Answer answer,
                     const std::set<std::size_t>& failing) {
  ReplyCase made{"call " + std::to_string(k), {}, support::Expected(function, failing), 0};
  for (const support::Step& step : function.steps)
    made.answers.push_back({{step.path, step.request}, {step.reply}});
  made.answers[k].second = std::move(answer);
  return made;
}

// --- Lists as the table shows them: "[{first}{second}]" ------------------------------

Strings Elements(const std::string& list) {
  Strings elements;
  std::size_t start = 1;
  while (start + 1 < list.size()) {
    const std::size_t end = list.find_first_of("})", start);
    elements.push_back(list.substr(start, end + 1 - start));
    start = end + 1;
  }
  return elements;
}

std::string List(const Strings& elements) {
  std::string text = "[";
  for (const std::string& element : elements) text += element;
  return text + "]";
}

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

NetworkgRPC::InterfaceInfo Interface(const char* name, const char* mac, int id) {
  NetworkgRPC::InterfaceInfo record;
  record.name = name;
  record.mac = mac;
  record.id = id;
  return record;
}

std::string MakeIds(const std::vector<int>& numbers) {
  ostrevan::networkmanager::Ids ids;
  for (const int number : numbers) ids.add_ids(number);
  return ids.SerializeAsString();
}

// Calls `first` and `first` + 1 request these interfaces instead.
void ExpectIds(ReplyCase& made, std::size_t first, const std::vector<int>& numbers) {
  for (std::size_t i = first; i < first + 2; ++i) {
    made.answers[i].first.bytes = MakeIds(numbers);
    made.expected.requests[i].bytes = MakeIds(numbers);
  }
}

// --- Empty ------------------------------------------------------------------------

enum class Empty {
  kNoElements,  // true: the list is empty
  kZeroValue,   // true: the value is zero
  kNoFirst,     // false without a line: the list has no first element
  kFails,       // as if the call had failed
};

Empty EmptyResult(const Function& function) {
  static const std::map<std::string, Empty> exceptions = {
      {"GetControlInterfacesInfo", Empty::kFails}, {"cGetControlInterface", Empty::kFails},
      {"GetDanteInterfacesInfo", Empty::kFails},   {"GetNTPServer", Empty::kNoFirst},
      {"GetCurrentDNS", Empty::kNoFirst},
  };
  if (const auto found = exceptions.find(function.name); found != exceptions.end())
    return found->second;
  return function.outputs[0] == '[' ? Empty::kNoElements : Empty::kZeroValue;
}

std::string ZeroLike(const std::string& shown) {
  if (shown[0] == '"') return "\"\"";
  if (shown[0] == '(') return "(0)";
  if (shown[0] == '{') return "{0 }";
  return "false";
}

// The switch mode in effect is then one that does not use both interfaces.
void EmptySwitchMode(const Function& function, ReplyCase& made) {
  const Strings usual = Elements(function.outputs);
  made.expected.outputs = List({usual[0], usual[1]});
  ExpectIds(made, 1, {support::kLan0});
  made.answers[1].second.bytes = function.steps[1].reply;
}

void EmptyAllIPv4(const Function& function, std::size_t k, ReplyCase& made) {
  const std::string before = Elements(function.outputs)[0];
  NetworkgRPC::InterfaceInfo lan2 = Interface("lan2", support::kLan2Mac, support::kLan2);
  NetworkgRPC::InterfaceInfo lan0 = Interface("lan0", support::kLan0Mac, support::kLan0);
  if (k == 0) {
    ExpectIds(made, 1, {});
    made.expected.outputs = function.failed_outputs;
    return;
  }
  if (k == 2) {
    lan0.mode = 1;
    lan0.ip = "10.1.0.10";
    lan0.netmask = "255.0.0.0";
  }
  made.expected.outputs = List({before, Show(lan2), Show(lan0)});
}

void EmptyTapping(const Function& function, std::size_t k, ReplyCase& made) {
  Strings usual = Elements(function.outputs);
  if (k == 0) {
    usual.resize(1);
    made.expected.requests.resize(1);
  } else {
    DantegRPC::ChannelLink unsubscribed;
    unsubscribed.rxChannelId = k == 1 ? 3 : 4;
    usual[k] = Show(unsubscribed);
  }
  made.expected.outputs = List(usual);
}

// Functions whose calls have different results; false for all others.
bool ExpectEmptyPerCall(const Function& function, std::size_t k, ReplyCase& made) {
  if (function.name == "GetDanteInterfacesInfo" && k == 0) {
    EmptySwitchMode(function, made);
  } else if (function.name == "GetAllIPv4") {
    EmptyAllIPv4(function, k, made);
  } else if (function.name == "GetTapping") {
    EmptyTapping(function, k, made);
  } else if (function.name == "GetChannelsNum") {
    made.expected.outputs = k == 0 ? "(0)(2)" : "(2)(0)";
  } else if (function.name == "GetMACAddress") {
    made.expected.done = false;
    made.expected.outputs = function.failed_outputs;
    made.expected.printed =
        "libNetworkgRPC: GetMACAddress: error while requesting informations via gRPC, interface "
        "not found\n";
  } else {
    return false;
  }
  return true;
}

ReplyCase EmptyReply(const Function& function, std::size_t k, const std::string& reply) {
  // A missing success flag means a rejected request.
  if (function.steps[k].replies_success) return CallFails(function, k, {reply});
  ReplyCase made = CallSucceeds(function, k, reply);
  if (ExpectEmptyPerCall(function, k, made)) return made;
  switch (EmptyResult(function)) {
    case Empty::kFails:
      return CallFails(function, k, {reply});
    case Empty::kNoFirst:
      made.expected.done = false;
      made.expected.outputs = function.failed_outputs;
      break;
    case Empty::kNoElements:
      made.expected.outputs = function.failed_outputs;
      break;
    case Empty::kZeroValue:
      made.expected.outputs = ZeroLike(function.outputs);
      break;
  }
  return made;
}

// --- Unlisted numbers -----------------------------------------------------------------

// Every mode except static is reported as dynamic.
ReplyCase UnlistedMode(const Function& function, std::size_t k, int number) {
  ostrevan::networkmanager::InterfacesConfig config;
  config.ParseFromString(function.steps[k].reply);
  for (auto& stored : *config.mutable_configs())
    stored.set_mode(static_cast<ostrevan::networkmanager::EnInterfaceMode>(number));
  ReplyCase made = CallSucceeds(function, k, config.SerializeAsString());
  // The control interface is down, and a dynamic interface that is down has no address.
  if (function.name == "GetControlInterfacesInfo") {
    NetworkgRPC::InterfaceInfo none;
    none.mac = support::kLan1Mac;
    made.expected.outputs = List({Elements(function.outputs)[0], Show(none)});
  } else if (function.name == "cGetControlInterface") {
    cInterfaceInfo none{};
    std::string(support::kLan1Mac).copy(none.mac, sizeof none.mac);
    made.expected.outputs = Show(none);
  } else {
    made.expected.outputs = Replace(function.outputs, "mode=1 ", "mode=0 ");
  }
  return made;
}

// The speed is not reported.
ReplyCase UnlistedSpeed(const Function& function, std::size_t k, int number) {
  ostrevan::networkmanager::InterfacesStatus status;
  status.ParseFromString(function.steps[k].reply);
  for (auto& live : *status.mutable_status())
    live.set_speed(static_cast<ostrevan::networkmanager::EnLinkSpeed>(number));
  return CallSucceeds(function, k, status.SerializeAsString());
}

// The encoding is reported unchanged.
ReplyCase UnlistedEncoding(const Function& function, std::size_t k, int number) {
  ostrevan::grpcdapi::LinkInfo link;
  link.ParseFromString(function.steps[k].reply);
  link.mutable_raw()->set_encoding(static_cast<ostrevan::grpcdapi::Encoding>(number));
  ReplyCase made = CallSucceeds(function, k, link.SerializeAsString());
  Strings elements = Elements(function.outputs);
  elements[k] = Replace(Replace(elements[k], "encoding=0", "encoding=1"), "encoding=1",
                        "encoding=" + std::to_string(number));
  made.expected.outputs = List(elements);
  return made;
}

// --- Long lists -------------------------------------------------------------------------

template <class Message, class Add>
std::string WithAdded(const std::string& usual, const Add& add) {
  Message message;
  message.ParseFromString(usual);
  for (int i = 0; i < kAdded; ++i) add(message, kFirstAdded + i);
  return message.SerializeAsString();
}

// The reply with many more entries; "" if it contains no list.
std::string LongReply(const std::string& method, const std::string& usual) {
  namespace nm = ostrevan::networkmanager;
  namespace dapi = ostrevan::grpcdapi;
  if (method == "GetAvailableInterfaces")
    return WithAdded<nm::Interfaces>(usual, [](auto& m, int i) { m.add_interfaces()->set_id(i); });
  if (method == "GetNetworkConfig")
    return WithAdded<nm::InterfacesConfig>(usual,
                                           [](auto& m, int i) { m.add_configs()->set_id(i); });
  if (method == "GetNetworkStatus")
    return WithAdded<nm::InterfacesStatus>(usual,
                                           [](auto& m, int i) { m.add_status()->set_id(i); });
  if (method == "GetAvailableSwitchModes")
    return WithAdded<nm::SwitchModes>(usual, [](auto& m, int i) { m.add_modes()->set_id(i); });
  if (method == "GetNTPServer")
    return WithAdded<nm::NTPServer>(usual,
                                    [](auto& m, int i) { m.add_servers(std::to_string(i)); });
  if (method == "GetDNSList")
    return WithAdded<nm::DNS>(usual, [](auto& m, int i) { m.add_dns(std::to_string(i)); });
  if (method == "GetTxChannels" || method == "GetRxChannels")
    return WithAdded<dapi::Channels>(usual, [](auto& m, int i) { m.add_channels()->set_id(i); });
  if (method == "GetAvailableSampleRates")
    return WithAdded<dapi::AvailableSampleRates>(
        usual, [](auto& m, int i) { m.add_samplerates(static_cast<std::uint32_t>(i)); });
  return "";
}

// One of the added entries in the outputs of the functions that return all entries.
std::string ShowAdded(const std::string& function, int i) {
  if (function == "GetSwitchModes") return Show(NetworkgRPC::SwitchMode{i, ""});
  if (function == "GetTxChannels" || function == "GetRxChannels")
    return Show(DantegRPC::Channel{i, ""});
  if (function == "GetAvailableSampleRates") return Show(i);
  if (function == "GetAllIPv4") return Show(Interface("", "", i));
  if (function == "GetTapping") {
    DantegRPC::ChannelLink link;
    link.rxChannelId = i;
    return Show(link);
  }
  return "";
}

void ExpectAdded(const Function& function, ReplyCase& made) {
  Strings elements = Elements(function.outputs);
  std::vector<int> asked = {support::kLan2, support::kLan0};
  for (int i = kFirstAdded; i < kFirstAdded + kAdded; ++i) {
    elements.push_back(ShowAdded(function.name, i));
    asked.push_back(i);
    if (function.name != "GetTapping") continue;
    ostrevan::grpcdapi::Channel channel;
    channel.set_id(i);
    const support::Request request = {function.steps[1].path, channel.SerializeAsString()};
    made.answers.push_back({request, {""}});
    made.expected.requests.push_back(request);
  }
  if (function.name == "GetAllIPv4") ExpectIds(made, 1, asked);
  made.expected.outputs = List(elements);
}

}  // namespace

ReplyCase CallFails(const Function& function, std::size_t k, Answer answer) {
  return WithAnswer(function, k, std::move(answer), {k});
}

ReplyCase CallSucceeds(const Function& function, std::size_t k, std::string reply) {
  return WithAnswer(function, k, {std::move(reply)}, {});
}

std::vector<ReplyCase> EmptyReplies(const Function& function, const std::string& reply) {
  std::vector<ReplyCase> cases;
  for (std::size_t k = 0; k < function.steps.size(); ++k)
    cases.push_back(EmptyReply(function, k, reply));
  return cases;
}

std::vector<ReplyCase> UnlistedEnumNumbers(const Function& function) {
  std::vector<ReplyCase> cases;
  for (std::size_t k = 0; k < function.steps.size(); ++k) {
    const std::string& path = function.steps[k].path;
    for (const int number : {9, -1}) {
      if (path == NetworkManagerPath("GetNetworkConfig"))
        cases.push_back(UnlistedMode(function, k, number));
      if (path == NetworkManagerPath("GetNetworkStatus"))
        cases.push_back(UnlistedSpeed(function, k, number));
      if (path == support::DapiPath("GetRxChannelLink"))
        cases.push_back(UnlistedEncoding(function, k, number));
    }
  }
  return cases;
}

std::vector<ReplyCase> LongLists(const Function& function) {
  std::vector<ReplyCase> cases;
  for (std::size_t k = 0; k < function.steps.size(); ++k) {
    const std::string& path = function.steps[k].path;
    const std::string reply = LongReply(path.substr(path.rfind('/') + 1), function.steps[k].reply);
    if (reply.empty()) continue;
    ReplyCase made = CallSucceeds(function, k, reply);
    if (function.name == "GetChannelsNum") {
      made.expected.outputs = k == 0 ? "(10002)(2)" : "(2)(10002)";
    } else if (k == 0 && !ShowAdded(function.name, 0).empty()) {
      ExpectAdded(function, made);
    }
    cases.push_back(std::move(made));
  }
  return cases;
}

}  // namespace faults
