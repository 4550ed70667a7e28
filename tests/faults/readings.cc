// What each function makes of replies that are well formed but unusual.
#include <map>
#include <stdexcept>

#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "tests/faults/case.h"
#include "tests/support/show.h"

namespace faults {
namespace {

using support::Function;
using support::NetworkManagerPath;
using support::Show;
using Texts = std::vector<std::string>;

constexpr int kMany = 10000;
constexpr int kFirstOfMany = 1000;

// --- Lists as the table shows them: "[{first}{second}]" ------------------------------

Texts Elements(const std::string& list) {
  Texts elements;
  std::size_t start = 1;
  while (start + 1 < list.size()) {
    const std::size_t end = list.find_first_of("})", start);
    elements.push_back(list.substr(start, end + 1 - start));
    start = end + 1;
  }
  return elements;
}

std::string List(const Texts& elements) {
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

// From call `first` on the two calls about the interfaces ask for these instead.
void AskFor(Case& made, std::size_t first, const std::vector<int>& numbers) {
  for (std::size_t i = first; i < first + 2; ++i) {
    made.answers[i].first.bytes = MakeIds(numbers);
    made.expected.requests[i].bytes = MakeIds(numbers);
  }
}

// --- Empty ------------------------------------------------------------------------

enum class Empty {
  kNothing,   // a list of nothing: done, and nothing is appended
  kZero,      // the zero value is an answer like any other
  kNoEntry,   // there is no first entry: not done, silently
  kLikeNone,  // as if the call had failed
};

const std::map<std::string, Empty>& EmptyReadings() {
  static const std::map<std::string, Empty> readings = {
      {"GetControlInterfacesInfo", Empty::kLikeNone},
      {"cGetControlInterface", Empty::kLikeNone},
      {"GetDanteInterfacesInfo", Empty::kLikeNone},
      {"GetSwitchModes", Empty::kNothing},
      {"GetConfiguredSwitchMode", Empty::kZero},
      {"GetCurrentSwitchMode", Empty::kZero},
      {"cGetCurrentSwitchMode", Empty::kZero},
      {"GetHostname", Empty::kZero},
      {"GetNTPServer", Empty::kNoEntry},
      {"GetCurrentDNS", Empty::kNoEntry},
      {"GetDefaultGateway", Empty::kZero},
      {"GetName", Empty::kZero},
      {"GetFirmwareVersion", Empty::kZero},
      {"GetSoftwareVersion", Empty::kZero},
      {"GetModelName", Empty::kZero},
      {"GetModelVersion", Empty::kZero},
      {"GetAvailableSampleRates", Empty::kNothing},
      {"GetSampleRate", Empty::kZero},
      {"GetLatency", Empty::kZero},
      {"GetAES67Available", Empty::kZero},
      {"GetAES67Status", Empty::kZero},
      {"GetDisableTx", Empty::kZero},
      {"GetPtpSlaveOnly", Empty::kZero},
      {"GetTxChannels", Empty::kNothing},
      {"GetRxChannels", Empty::kNothing},
  };
  return readings;
}

std::string ZeroLike(const std::string& shown) {
  if (shown[0] == '"') return "\"\"";
  if (shown[0] == '(') return "(0)";
  if (shown[0] == '{') return "{0 }";
  return "false";
}

// The mode in effect is then not the one in which both interfaces are in use.
void EmptySwitchMode(const Function& function, Case& made) {
  const Texts usual = Elements(function.outputs);
  made.expected.outputs = List({usual[0], usual[1]});
  AskFor(made, 1, {support::kLan0});
  made.answers[1].second.bytes = function.steps[1].reply;
}

void EmptyAllIPv4(const Function& function, std::size_t k, Case& made) {
  const std::string before = Elements(function.outputs)[0];
  NetworkgRPC::InterfaceInfo lan2 = Interface("lan2", support::kLan2Mac, support::kLan2);
  NetworkgRPC::InterfaceInfo lan0 = Interface("lan0", support::kLan0Mac, support::kLan0);
  if (k == 0) {
    AskFor(made, 1, {});
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

void EmptyTapping(const Function& function, std::size_t k, Case& made) {
  Texts usual = Elements(function.outputs);
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

// The functions whose calls differ from one another.
bool ReadEmptySpecially(const Function& function, std::size_t k, Case& made) {
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

Case EmptyReply(const Function& function, std::size_t k, const std::string& reply) {
  // No success flag is a refusal.
  if (function.steps[k].confirms) return CallFails(function, k, {reply});
  Case made = CallSucceeds(function, k, reply);
  if (ReadEmptySpecially(function, k, made)) return made;
  switch (EmptyReadings().at(function.name)) {
    case Empty::kLikeNone:
      return CallFails(function, k, {reply});
    case Empty::kNoEntry:
      made.expected.done = false;
      made.expected.outputs = function.failed_outputs;
      break;
    case Empty::kNothing:
      made.expected.outputs = function.failed_outputs;
      break;
    case Empty::kZero:
      made.expected.outputs = ZeroLike(function.outputs);
      break;
  }
  return made;
}

// --- Unlisted numbers -----------------------------------------------------------------

// Every mode but the static one counts as dynamic.
Case UnlistedMode(const Function& function, std::size_t k, int number) {
  ostrevan::networkmanager::InterfacesConfig config;
  config.ParseFromString(function.steps[k].reply);
  for (auto& stored : *config.mutable_configs())
    stored.set_mode(static_cast<ostrevan::networkmanager::EnInterfaceMode>(number));
  Case made = CallSucceeds(function, k, config.SerializeAsString());
  // The control interface is not live, and a dynamic one then has no address.
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

// The speed is not handed out.
Case UnlistedSpeed(const Function& function, std::size_t k, int number) {
  ostrevan::networkmanager::InterfacesStatus status;
  status.ParseFromString(function.steps[k].reply);
  for (auto& live : *status.mutable_status())
    live.set_speed(static_cast<ostrevan::networkmanager::EnLinkSpeed>(number));
  return CallSucceeds(function, k, status.SerializeAsString());
}

// The encoding is handed out as it is.
Case UnlistedEncoding(const Function& function, std::size_t k, int number) {
  ostrevan::grpcdapi::LinkInfo link;
  link.ParseFromString(function.steps[k].reply);
  link.mutable_raw()->set_encoding(static_cast<ostrevan::grpcdapi::Encoding>(number));
  Case made = CallSucceeds(function, k, link.SerializeAsString());
  Texts elements = Elements(function.outputs);
  elements[k] = Replace(Replace(elements[k], "encoding=0", "encoding=1"), "encoding=1",
                        "encoding=" + std::to_string(number));
  made.expected.outputs = List(elements);
  return made;
}

// --- Crowds -------------------------------------------------------------------------

template <class Message, class Add>
std::string Many(const std::string& usual, const Add& add) {
  Message message;
  message.ParseFromString(usual);
  for (int i = 0; i < kMany; ++i) add(message, kFirstOfMany + i);
  return message.SerializeAsString();
}

// The reply of this call with many more entries; "" when it holds no list.
std::string CrowdedReply(const std::string& method, const std::string& usual) {
  namespace nm = ostrevan::networkmanager;
  namespace dapi = ostrevan::grpcdapi;
  if (method == "GetAvailableInterfaces")
    return Many<nm::Interfaces>(usual, [](auto& m, int i) { m.add_interfaces()->set_id(i); });
  if (method == "GetNetworkConfig")
    return Many<nm::InterfacesConfig>(usual, [](auto& m, int i) { m.add_configs()->set_id(i); });
  if (method == "GetNetworkStatus")
    return Many<nm::InterfacesStatus>(usual, [](auto& m, int i) { m.add_status()->set_id(i); });
  if (method == "GetAvailableSwitchModes")
    return Many<nm::SwitchModes>(usual, [](auto& m, int i) { m.add_modes()->set_id(i); });
  if (method == "GetNTPServer")
    return Many<nm::NTPServer>(usual, [](auto& m, int i) { m.add_servers(std::to_string(i)); });
  if (method == "GetDNSList")
    return Many<nm::DNS>(usual, [](auto& m, int i) { m.add_dns(std::to_string(i)); });
  if (method == "GetTxChannels" || method == "GetRxChannels")
    return Many<dapi::Channels>(usual, [](auto& m, int i) { m.add_channels()->set_id(i); });
  if (method == "GetAvailableSampleRates")
    return Many<dapi::AvailableSampleRates>(
        usual, [](auto& m, int i) { m.add_samplerates(static_cast<std::uint32_t>(i)); });
  return "";
}

// How one of the many shows in the outputs of the functions that list them all.
std::string ShownOfMany(const std::string& function, int i) {
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

void ExpectTheMany(const Function& function, Case& made) {
  Texts elements = Elements(function.outputs);
  std::vector<int> asked = {support::kLan2, support::kLan0};
  for (int i = kFirstOfMany; i < kFirstOfMany + kMany; ++i) {
    elements.push_back(ShownOfMany(function.name, i));
    asked.push_back(i);
    if (function.name != "GetTapping") continue;
    ostrevan::grpcdapi::Channel channel;
    channel.set_id(i);
    const support::Request request = {function.steps[1].path, channel.SerializeAsString()};
    made.answers.push_back({request, {""}});
    made.expected.requests.push_back(request);
  }
  if (function.name == "GetAllIPv4") AskFor(made, 1, asked);
  made.expected.outputs = List(elements);
}

}  // namespace

std::vector<Case> EmptyReplies(const Function& function, const std::string& reply) {
  std::vector<Case> cases;
  for (std::size_t k = 0; k < function.steps.size(); ++k)
    cases.push_back(EmptyReply(function, k, reply));
  return cases;
}

std::vector<Case> UnlistedNumbers(const Function& function) {
  std::vector<Case> cases;
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

std::vector<Case> Crowds(const Function& function) {
  std::vector<Case> cases;
  for (std::size_t k = 0; k < function.steps.size(); ++k) {
    const std::string& path = function.steps[k].path;
    const std::string reply =
        CrowdedReply(path.substr(path.rfind('/') + 1), function.steps[k].reply);
    if (reply.empty()) continue;
    Case made = CallSucceeds(function, k, reply);
    if (function.name == "GetChannelsNum") {
      made.expected.outputs = k == 0 ? "(10002)(2)" : "(2)(10002)";
    } else if (k == 0 && !ShownOfMany(function.name, 0).empty()) {
      ExpectTheMany(function, made);
    }
    cases.push_back(std::move(made));
  }
  return cases;
}

}  // namespace faults
