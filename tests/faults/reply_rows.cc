// Faults of the answer: all functions in one process, one after the other, with
// every one of their calls answered badly in turn.
#include <functional>
#include <map>

#include "tests/faults/apart.h"
#include "tests/faults/case.h"
#include "tests/faults/row.h"

namespace faults {
namespace {

using namespace std::string_literals;
using support::Answer;
using support::Device;
using support::Function;
using support::Outcome;
using support::Step;

// What gRPC lets a client receive unless it is told otherwise.
constexpr std::size_t kLargestReply = 4194304;

using Cases = std::function<std::vector<Case>(const Function&)>;

void Script(Device& device, const support::Request& request, const Answer& answer) {
  const bool network = request.path.rfind(support::NetworkManagerPath(""), 0) == 0;
  (network ? device.network_manager : device.dapi)->ScriptFor(request, answer);
}

void RunCase(Device& device, const Function& function, const Case& one, Tally& tally) {
  for (const auto& [request, answer] : one.answers) Script(device, request, answer);
  const int before = tally.protobuf_lines;
  Outcome seen = TimedCall(function, tally);
  seen.requests = device.TakeRequests();
  tally.Count(function.name + " " + one.what, seen, one.expected);
  if (tally.protobuf_lines - before != one.protobuf_lines)
    tally.Count(function.name + " " + one.what, false, "protobuf printed more or less");

  for (const Step& step : function.steps) Script(device, {step.path, step.request}, {step.reply});
  seen = TimedCall(function, tally);
  seen.requests = device.TakeRequests();
  tally.Count(function.name + " after " + one.what, seen, support::Expected(function, {}));
}

// In a process of its own, whose clients belong to this row's device.
Row Make(const std::string& name, const Cases& cases) {
  const auto work = [cases](Tally& tally) {
    Device device;
    device.BuildClients();
    for (const Function& function : support::AllFunctions())
      for (const Case& one : cases(function)) RunCase(device, function, one, tally);
  };
  return {name, [=] { return RunApart({{name, work}}); }};
}

// Each call of a function in turn gets this answer and counts as failed.
Cases EachCallFails(const std::vector<Answer>& answers) {
  return [=](const Function& function) {
    std::vector<Case> cases;
    for (std::size_t k = 0; k < function.steps.size(); ++k)
      for (const Answer& answer : answers) cases.push_back(CallFails(function, k, answer));
    return cases;
  };
}

// Each call in turn gets what is made of its good reply, and nothing changes.
Cases EachCallSucceeds(const std::function<std::string(const std::string&)>& make) {
  return [=](const Function& function) {
    std::vector<Case> cases;
    for (std::size_t k = 0; k < function.steps.size(); ++k)
      cases.push_back(CallSucceeds(function, k, make(function.steps[k].reply)));
    return cases;
  };
}

std::vector<Answer> EveryStatus() {
  std::vector<Answer> answers;
  for (int code = 1; code <= 16; ++code)
    answers.push_back(support::Failure(static_cast<grpc::StatusCode>(code)));
  return answers;
}

// Every choice of calls fails, from none to all.
std::vector<Case> AnyCallsFail(const Function& function) {
  std::vector<Case> cases;
  for (std::size_t set = 0; set < (std::size_t{1} << function.steps.size()); ++set) {
    Case made{"calls " + std::to_string(set), {}, {}, 0};
    std::set<std::size_t> failing;
    for (std::size_t i = 0; i < function.steps.size(); ++i) {
      const bool fails = (set >> i & 1U) != 0;
      if (fails) failing.insert(i);
      made.answers.push_back(
          {{function.steps[i].path, function.steps[i].request},
           fails ? support::Failure(grpc::StatusCode::INTERNAL) : Answer{function.steps[i].reply}});
    }
    made.expected = support::Expected(function, failing);
    cases.push_back(std::move(made));
  }
  return cases;
}

std::vector<Case> Refusals(const Function& function) {
  std::vector<Case> cases;
  for (std::size_t k = 0; k < function.steps.size(); ++k)
    if (function.steps[k].confirms) cases.push_back(CallFails(function, k, {"\x08\x00"s}));
  return cases;
}

std::string Truncated(const std::string& reply) {
  return reply.empty() ? "\x0a"s : reply.substr(0, reply.size() - 1);
}

// Cut at its last byte, or before it where that leaves whole fields.
std::vector<Case> Truncations(const Function& function) {
  std::vector<Case> cases;
  for (std::size_t k = 0; k < function.steps.size(); ++k) {
    cases.push_back(CallFails(function, k, {Truncated(function.steps[k].reply)}));
    cases.push_back(CallFails(function, k, {"\x0a\x05x"s}));
    cases.push_back(CallFails(function, k, {"\x08"s}));
  }
  return cases;
}

// All fields of the schema as numbers of four bytes, which none of them is. The
// parser takes them for unknown fields: the reply is as good as empty.
std::string OtherWireTypes() {
  std::string reply;
  for (int field = 1; field <= 9; ++field)
    reply += static_cast<char>(field << 3 | 5) + "\x01\x02\x03\x04"s;
  return reply;
}

// One of each wire type under field numbers that the schema does not have.
std::string UnknownFields(const std::string& reply) {
  return reply + "\xc0\x3e\x05" + "\xc1\x3e" + "12345678" + "\xc2\x3e\x03" + "new" + "\xc5\x3e" +
         "1234" + "\xc3\x3e\x08\x01\xc4\x3e";
}

// An unknown text field makes the reply as long as wanted.
std::string Padded(const std::string& reply, std::size_t size) {
  std::size_t rest = size - reply.size() - 6;  // its tag has two bytes, its length four
  std::string padded = reply + "\xc2\x3e";
  const std::size_t text = rest;
  for (int i = 0; i < 4; ++i, rest >>= 7U)
    padded += static_cast<char>((rest & 0x7FU) | (i < 3 ? 0x80U : 0U));
  return padded.append(text, 'x');
}

// A byte that is no UTF-8 in each text field in turn.
std::vector<Case> InvalidTexts(const Function& function) {
  const std::vector<std::string> first = {"\x0a\x01\xff"s};
  const std::vector<std::string> entry_name = {"\x0a\x03\x12\x01\xff"s, "\x0a\x03\x1a\x01\xff"s};
  const std::vector<std::string> second = {"\x12\x01\xff"s};
  const std::map<std::string, std::vector<std::string>> replies = {
      {"GetAvailableInterfaces", entry_name},
      {"GetNetworkConfig",
       {"\x0a\x03\x1a\x01\xff"s, "\x0a\x03\x22\x01\xff"s, "\x0a\x03\x2a\x01\xff"s,
        "\x0a\x03\x32\x01\xff"s, "\x0a\x05\x4a\x03\x12\x01\xff"s}},
      {"GetNetworkStatus", entry_name},
      {"GetAvailableSwitchModes", {"\x0a\x03\x12\x01\xff"s}},
      {"GetSwitchMode", second},
      {"GetSwitchModeStatus", second},
      {"GetHostname", first},
      {"GetNTPServer", first},
      {"GetDNSList", first},
      {"GetRouting", first},
      {"GetName", first},
      {"GetModelName", first},
      {"GetFirmwareVersion", first},
      {"GetSoftwareVersion", first},
      {"GetModelVersion", first},
      {"GetTxChannels", entry_name},
      {"GetRxChannels", entry_name},
      {"GetRxChannelLink",
       {"\x12\x01\xff"s, "\x1a\x01\xff"s, "\x22\x03\x0a\x01\xff"s, "\x22\x03\x4a\x01\xff"s}},
  };
  std::vector<Case> cases;
  for (std::size_t k = 0; k < function.steps.size(); ++k) {
    const std::string& path = function.steps[k].path;
    const auto found = replies.find(path.substr(path.rfind('/') + 1));
    if (found == replies.end()) continue;
    for (const std::string& reply : found->second) {
      cases.push_back(CallFails(function, k, {reply}));
      cases.back().protobuf_lines = 1;
    }
  }
  return cases;
}

}  // namespace

std::vector<Row> ReplyRows() {
  return {
      Make("AnswersWell", EachCallSucceeds([](const std::string& reply) { return reply; })),
      Make("EveryStatusCode", EachCallFails(EveryStatus())),
      Make("AnyCallsFail", AnyCallsFail),
      Make("SuccessFalse", Refusals),
      Make("EmptyReply", [](const Function& function) { return EmptyReplies(function); }),
      Make("TruncatedReply", Truncations),
      Make("OtherWireTypes",
           [](const Function& function) { return EmptyReplies(function, OtherWireTypes()); }),
      Make("ImpossibleWireTypes", EachCallFails({{"\x0e"s}, {"\x0f"s}, {"\x0c"s}, {"\x00"s}})),
      Make("InvalidUtf8", InvalidTexts),
      Make("UnknownFields", EachCallSucceeds(UnknownFields)),
      Make("UnlistedEnumNumbers", UnlistedNumbers),
      Make("TenThousandEntries", Crowds),
      Make("LargestReply",
           EachCallSucceeds([](const std::string& reply) { return Padded(reply, kLargestReply); })),
      Make("TooLargeReply", EachCallFails({{Padded("", kLargestReply + 1)}})),
  };
}

}  // namespace faults
