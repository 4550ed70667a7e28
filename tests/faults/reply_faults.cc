// Faults of the reply: all functions in one process, one after another. Each of their
// calls in turn gets the faulty reply.
#include <cstdlib>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "support/child_program.h"
#include "tests/faults/fault_matrix.h"
#include "tests/faults/parallel_processes.h"
#include "tests/faults/reply_cases.h"

namespace faults {
namespace {

using namespace std::string_literals;
using support::Answer;
using support::Device;
using support::Function;
using support::Outcome;
using support::Step;

// gRPC's default limit for a received message, in bytes.
constexpr std::size_t kLargestReply = 4194304;

using ReplyCases = std::function<std::vector<ReplyCase>(const Function&)>;

void Script(Device& device, const support::Request& request, const Answer& answer) {
  const bool network = request.path.rfind(support::NetworkManagerPath(""), 0) == 0;
  (network ? device.network_manager : device.dapi)->ScriptFor(request, answer);
}

// Calls the function. Only what the library itself sends is compared: a program in front of
// the device adds to it.
Outcome CallAndTakeRequests(Device& device, const Function& function, bool is_direct,
                            ResultCounts& counts) {
  Outcome seen = TimedCall(function, counts);
  seen.requests = device.TakeRequests();
  if (!is_direct)
    for (support::Request& request : seen.requests) request.besides.clear();
  return seen;
}

void RunCase(Device& device, const Function& function, const ReplyCase& one, bool is_direct,
             ResultCounts& counts) {
  for (const auto& [request, answer] : one.answers) Script(device, request, answer);
  const int before = counts.protobuf_lines;
  counts.Count(function.name + " " + one.name,
               CallAndTakeRequests(device, function, is_direct, counts), one.expected);
  if (counts.protobuf_lines - before != one.protobuf_lines)
    counts.Count(function.name + " " + one.name, false,
                 "protobuf printed a different number of lines");

  for (const Step& step : function.steps) Script(device, {step.path, step.request}, {step.reply});
  counts.Count(function.name + " after " + one.name,
               CallAndTakeRequests(device, function, is_direct, counts),
               support::Expected(function, {}));
}

struct ReplyFault {
  std::string name;
  ReplyCases cases;
};

// A daemon on another implementation of gRPC, which passes the calls on to the device.
// Points the environment at it.
std::unique_ptr<support::ChildProgram> StartOtherStack(const std::vector<std::string>& program) {
  std::vector<std::string> command = {"/usr/bin/setpriv", "--pdeathsig", "KILL"};
  command.insert(command.end(), program.begin(), program.end());
  auto daemon = std::make_unique<support::ChildProgram>(command);
  std::istringstream ready(daemon->ReadLine());
  int endpoints = 0;
  for (std::string word; ready >> word;) {
    const std::size_t end = word.find('=');
    if (end == std::string::npos) continue;
    setenv(word.substr(0, end).c_str(), ("ipv4:" + word.substr(end + 1)).c_str(), 1);
    ++endpoints;
  }
  if (endpoints != 2) throw std::runtime_error("cannot start " + program.front());
  return daemon;
}

// Runs in its own process, because its clients are connected to this row's device, or to
// the program in front of it.
MatrixRow MakeRow(const std::string& name, const std::vector<ReplyFault>& faults,
                  const std::vector<std::string>& other_stack = {}) {
  const auto work = [=](ResultCounts& counts) {
    Device device;
    const auto in_front = other_stack.empty() ? nullptr : StartOtherStack(other_stack);
    device.BuildClients();
    for (const ReplyFault& fault : faults)
      for (const Function& function : support::AllFunctions())
        for (ReplyCase& one : fault.cases(function)) {
          one.name = fault.name + " " + one.name;
          RunCase(device, function, one, in_front == nullptr, counts);
        }
  };
  return {name, [=] { return RunInParallelProcesses({{name, work}}); }};
}

// Each call in turn gets each of the answers that `answers` gives for it and that make it
// fail.
ReplyCases EachCallFails(const std::function<std::vector<Answer>(const Step&)>& answers,
                         int protobuf_lines = 0) {
  return [=](const Function& function) {
    std::vector<ReplyCase> cases;
    for (std::size_t k = 0; k < function.steps.size(); ++k) {
      for (const Answer& answer : answers(function.steps[k])) {
        cases.push_back(CallFails(function, k, answer));
        cases.back().protobuf_lines = protobuf_lines;
      }
    }
    return cases;
  };
}

// Each call in turn gets its usual reply as changed by `change`, which must make no difference.
ReplyCases EachCallSucceeds(const std::function<std::string(const std::string&)>& change) {
  return [=](const Function& function) {
    std::vector<ReplyCase> cases;
    for (std::size_t k = 0; k < function.steps.size(); ++k)
      cases.push_back(CallSucceeds(function, k, change(function.steps[k].reply)));
    return cases;
  };
}

std::vector<Answer> EveryStatus(const Step&) {
  std::vector<Answer> answers;
  for (int code = 1; code <= 16; ++code)
    answers.push_back(support::Failure(static_cast<grpc::StatusCode>(code)));
  return answers;
}

// Every subset of the calls fails.
std::vector<ReplyCase> AnyCallsFail(const Function& function) {
  std::vector<ReplyCase> cases;
  for (std::size_t set = 0; set < (std::size_t{1} << function.steps.size()); ++set) {
    ReplyCase made{"calls " + std::to_string(set), {}, {}, 0};
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

std::vector<Answer> SuccessFalse(const Step& step) {
  if (!step.replies_success) return {};
  return {{"\x08\x00"s}};
}

// The reply without its last byte, a string and a number cut off.
std::vector<Answer> Truncated(const Step& step) {
  const std::string& reply = step.reply;
  return {{reply.empty() ? "\x0a"s : reply.substr(0, reply.size() - 1)}, {"\x0a\x05x"s}, {"\x08"s}};
}

std::vector<Answer> ImpossibleWireTypes(const Step&) {
  return {{"\x0e"s}, {"\x0f"s}, {"\x0c"s}, {"\x00"s}};
}

// All fields of the schema with wire type 5 (four bytes), which none of them has. The
// parser treats them as unknown fields, so the reply is empty to the library.
std::string OtherWireTypes() {
  std::string reply;
  for (int field = 1; field <= 9; ++field)
    reply += static_cast<char>(field << 3 | 5) + "\x01\x02\x03\x04"s;
  return reply;
}

// One unknown field of each wire type.
std::string UnknownFields(const std::string& reply) {
  return reply + "\xc0\x3e\x05" + "\xc1\x3e" + "12345678" + "\xc2\x3e\x03" + "new" + "\xc5\x3e" +
         "1234" + "\xc3\x3e\x08\x01\xc4\x3e";
}

// An unknown string field brings the reply to `size` bytes.
std::string Padded(const std::string& reply, std::size_t size) {
  std::size_t rest = size - reply.size() - 6;  // its tag has two bytes, its length four
  std::string padded = reply + "\xc2\x3e";
  const std::size_t text = rest;
  for (int i = 0; i < 4; ++i, rest >>= 7U)
    padded += static_cast<char>((rest & 0x7FU) | (i < 3 ? 0x80U : 0U));
  return padded.append(text, 'x');
}

std::vector<Answer> TooLarge(const Step&) { return {{Padded("", kLargestReply + 1)}}; }

// A reply whose field, given by the field numbers that lead to it, is not UTF-8.
std::string InvalidString(const std::vector<int>& field) {
  std::string bytes = "\xff";
  for (auto number = field.rbegin(); number != field.rend(); ++number)
    bytes = static_cast<char>(*number << 3 | 2) + std::string(1, static_cast<char>(bytes.size())) +
            bytes;
  return bytes;
}

// Invalid UTF-8 in each string field in turn.
std::vector<Answer> InvalidStrings(const Step& step) {
  static const std::map<std::string, std::vector<std::vector<int>>> fields = {
      {"GetAvailableInterfaces", {{1, 2}, {1, 3}}},
      {"GetNetworkConfig", {{1, 3}, {1, 4}, {1, 5}, {1, 6}, {1, 9, 2}}},
      {"GetNetworkStatus", {{1, 2}, {1, 3}}},
      {"GetAvailableSwitchModes", {{1, 2}}},
      {"GetSwitchMode", {{2}}},
      {"GetSwitchModeStatus", {{2}}},
      {"GetHostname", {{1}}},
      {"GetNTPServer", {{1}}},
      {"GetDNSList", {{1}}},
      {"GetRouting", {{1}}},
      {"GetName", {{1}}},
      {"GetModelName", {{1}}},
      {"GetFirmwareVersion", {{1}}},
      {"GetSoftwareVersion", {{1}}},
      {"GetModelVersion", {{1}}},
      {"GetTxChannels", {{1, 2}, {1, 3}}},
      {"GetRxChannels", {{1, 2}, {1, 3}}},
      {"GetRxChannelLink", {{2}, {3}, {4, 1}, {4, 9}}},
  };
  std::vector<Answer> answers;
  const auto found = fields.find(step.path.substr(step.path.rfind('/') + 1));
  if (found != fields.end())
    for (const std::vector<int>& field : found->second) answers.push_back({InvalidString(field)});
  return answers;
}

std::vector<ReplyFault> AllReplyFaults() {
  return {
      {"AnswersWell", EachCallSucceeds([](const std::string& reply) { return reply; })},
      {"EveryStatusCode", EachCallFails(EveryStatus)},
      {"AnyCallsFail", AnyCallsFail},
      {"SuccessFalse", EachCallFails(SuccessFalse)},
      {"EmptyReply", [](const Function& function) { return EmptyReplies(function); }},
      {"TruncatedReply", EachCallFails(Truncated)},
      {"OtherWireTypes",
       [](const Function& function) { return EmptyReplies(function, OtherWireTypes()); }},
      {"ImpossibleWireTypes", EachCallFails(ImpossibleWireTypes)},
      {"InvalidUtf8", EachCallFails(InvalidStrings, 1)},
      {"UnknownFields", EachCallSucceeds(UnknownFields)},
      {"UnlistedEnumNumbers", UnlistedEnumNumbers},
      {"TenThousandEntries", LongLists},
      {"LargestReply",
       EachCallSucceeds([](const std::string& reply) { return Padded(reply, kLargestReply); })},
      {"TooLargeReply", EachCallFails(TooLarge)},
  };
}

#ifdef OTHER_STACKS

std::vector<ReplyFault> FaultsWhere(const std::function<bool(const std::string& name)>& is_wanted) {
  std::vector<ReplyFault> faults;
  for (ReplyFault& fault : AllReplyFaults())
    if (is_wanted(fault.name)) faults.push_back(std::move(fault));
  return faults;
}

std::vector<MatrixRow> DaemonsOnOtherStacks() {
  const std::string folder = OTHER_STACKS "/";
  // Without the 40,000 calls, which show nothing more.
  const std::vector<ReplyFault> bytes =
      FaultsWhere([](const std::string& name) { return name != "TenThousandEntries"; });
  // Messages that protobufjs reads and writes; it accepts others than the library does.
  const std::set<std::string> messages = {"AnswersWell", "SuccessFalse", "EmptyReply",
                                          "UnlistedEnumNumbers"};
  return {MakeRow("DaemonOnGrpcJs", bytes, {folder + "grpc_js_daemon"}),
          MakeRow("DaemonOnGrpcGo", bytes, {folder + "grpc_go_daemon"}),
          MakeRow("DaemonOnGrpcJsDecoding",
                  FaultsWhere([&](const std::string& name) { return messages.count(name) != 0; }),
                  {folder + "grpc_js_daemon", "--decode"})};
}

#else

// They cannot be built for another architecture.
std::vector<MatrixRow> DaemonsOnOtherStacks() { return {}; }

#endif

}  // namespace

std::vector<MatrixRow> ReplyFaults() {
  std::vector<MatrixRow> rows = DaemonsOnOtherStacks();
  for (const ReplyFault& fault : AllReplyFaults()) rows.push_back(MakeRow(fault.name, {fault}));
  return rows;
}

}  // namespace faults
