#include "simulator/fault.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <vector>

#include "simulator/methods.h"
#include "state_document/names.h"

namespace simulator {
namespace {

constexpr auto& kKinds = state_document::kFaults;
constexpr auto& kStatuses = state_document::kStatuses;

constexpr std::array<Daemon, 2> kDaemons{Daemon::kNetworkManager, Daemon::kDapi};

constexpr const char* kMessage = "message=";

template <class Names>
std::size_t IndexOf(const Names& names, const std::string& name, const std::string& what) {
  const auto found = std::find(names.begin(), names.end(), name);
  if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
  std::string list;
  for (const char* known : names) list += (list.empty() ? "" : ", ") + std::string(known);
  throw BadFault('\'' + name + "' is no " + what + ": " + list);
}

std::uint32_t ParseNumber(const std::string& key, const std::string& text) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end)
    throw BadFault(key + "='" + text + "' is no whole number of 0 to 4294967295");
  return number;
}

// One word of the text form: "refuse", "delay=20".
void ParseWord(const std::string& word, Fault& fault) {
  const std::size_t equals = word.find('=');
  const std::string key = word.substr(0, equals);
  const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
  if (equals == std::string::npos) {
    if (fault.kind != FaultKind::kNone)
      throw BadFault("one fault is enough, '" + word + "' is another");
    fault.kind = FaultKindOf(word);
  } else if (key == "status") {
    if (fault.kind != FaultKind::kNone)
      throw BadFault("one fault is enough, '" + word + "' is another");
    fault.kind = FaultKind::kStatus;
    fault.status = StatusOf(value);
  } else if (key == "delay") {
    fault.delay_ms = ParseNumber(key, value);
  } else if (key == "times") {
    fault.times = ParseNumber(key, value);
  } else {
    throw BadFault('\'' + word +
                   "' is none of status=CODE, delay=MILLISECONDS, times=N, message=TEXT");
  }
}

bool IsAllOfOneDaemon(const std::string& pattern) {
  return std::any_of(kDaemons.begin(), kDaemons.end(),
                     [&](Daemon daemon) { return pattern == Name(daemon) + std::string(".*"); });
}

// The methods that the pattern is for; one at least.
std::vector<const Method*> Matching(const std::string& pattern) {
  std::vector<const Method*> matching;
  for (const Daemon daemon : kDaemons)
    for (const Method& method : MethodsOf(daemon))
      if (Matches(pattern, daemon, method.name)) matching.push_back(&method);
  if (matching.empty())
    throw BadFault("no method is called '" + pattern + "'; DAPI.* and NetworkManager.* " +
                   "stand for all of a daemon, * for all");
  return matching;
}

}  // namespace

const char* Name(Daemon daemon) {
  return daemon == Daemon::kNetworkManager ? "NetworkManager" : "DAPI";
}

Fault ParseFault(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos)
    throw BadFault('\'' + text + "' is not METHOD:FAULT, such as GetName:status=UNAVAILABLE");
  Fault fault;
  fault.method = text.substr(0, colon);
  for (std::size_t start = colon + 1; start < text.size();) {
    // A message may have commas of its own, so that it comes last.
    if (text.compare(start, std::strlen(kMessage), kMessage) == 0) {
      fault.message = text.substr(start + std::strlen(kMessage));
      break;
    }
    const std::size_t end = std::min(text.find(',', start), text.size());
    ParseWord(text.substr(start, end - start), fault);
    start = end + 1;
  }
  Check(fault);
  return fault;
}

std::string ToText(const Fault& fault) {
  std::string words;
  const auto add = [&](const std::string& word) { words += (words.empty() ? "" : ",") + word; };
  if (fault.kind == FaultKind::kStatus) {
    add(std::string("status=") + StatusName(fault.status));
  } else if (fault.kind != FaultKind::kNone) {
    add(Name(fault.kind));
  }
  if (fault.delay_ms != 0) add("delay=" + std::to_string(fault.delay_ms));
  if (fault.times != 0) add("times=" + std::to_string(fault.times));
  if (!fault.message.empty()) add(kMessage + fault.message);
  return fault.method + ':' + words;
}

void Check(const Fault& fault) {
  const std::vector<const Method*> matching = Matching(fault.method);
  if (fault.kind == FaultKind::kNone && fault.delay_ms == 0)
    throw BadFault(fault.method + " is told no fault");
  if (static_cast<std::size_t>(fault.status) >= kStatuses.size())  // negative ones, too
    throw BadFault(std::to_string(fault.status) + " is no status code");
  if (fault.kind == FaultKind::kStatus && fault.status == 0)
    throw BadFault("the fault status needs a code, and OK is none, such as status=UNAVAILABLE");
  if (fault.kind != FaultKind::kStatus && (fault.status != 0 || !fault.message.empty()))
    throw BadFault(std::string("a status code or message is for the fault status, not for ") +
                   Name(fault.kind));
  if (fault.kind == FaultKind::kRefuse &&
      std::none_of(matching.begin(), matching.end(),
                   [](const Method* method) { return method->replies_success; }))
    throw BadFault(fault.method + " cannot refuse: its reply has no success");
  if (fault.kind == FaultKind::kStop &&
      (!IsAllOfOneDaemon(fault.method) || fault.delay_ms != 0 || fault.times != 0))
    throw BadFault("only DAPI.* or NetworkManager.* can stop, without delay and times");
}

void CheckPattern(const std::string& pattern) { Matching(pattern); }

bool Matches(const std::string& pattern, Daemon daemon, const std::string& method) {
  const std::string prefix = Name(daemon) + std::string(".");
  return pattern == "*" || pattern == prefix + '*' || pattern == method ||
         pattern == prefix + method;
}

Daemon StoppedDaemon(const Fault& fault) {
  return Matches(fault.method, Daemon::kDapi, "") ? Daemon::kDapi : Daemon::kNetworkManager;
}

const char* Name(FaultKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

FaultKind FaultKindOf(const std::string& name) {
  return static_cast<FaultKind>(IndexOf(kKinds, name, "fault"));
}

const char* StatusName(std::int32_t status) { return kStatuses[static_cast<std::size_t>(status)]; }

std::int32_t StatusOf(const std::string& name) {
  return static_cast<std::int32_t>(IndexOf(kStatuses, name, "status"));
}

}  // namespace simulator
