#include "simulator/fault.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <vector>

#include "simulator/json.h"
#include "simulator/method_table.h"
#include "state_document/names.h"
#include "terminal/joined.h"

namespace simulator {
namespace {

constexpr const char* kMessage = "message=";

std::int32_t NumberOf(const state_document::Names& names, const std::string& name,
                      const std::string& what) {
  const auto* const found = std::find(names.begin(), names.end(), name);
  if (found != names.end()) return static_cast<std::int32_t>(found - names.begin());
  throw BadFault("unknown " + what + " '" + name + "'; use one of " + terminal::Joined(names));
}

const char* Name(FaultKind kind) { return state_document::kFaults[static_cast<std::size_t>(kind)]; }

// The end of the JSON object that begins at `start`; the end of the text if it has none.
std::size_t EndOfObject(const std::string& text, std::size_t start) {
  int depth = 0;
  bool is_in_string = false;
  for (std::size_t i = start; i < text.size(); ++i) {
    if (is_in_string && text[i] == '\\') {
      ++i;
    } else if (text[i] == '"') {
      is_in_string = !is_in_string;
    } else if (!is_in_string && (text[i] == '{' || text[i] == '}')) {
      depth += text[i] == '{' ? 1 : -1;
      if (depth == 0) return i + 1;
    }
  }
  return text.size();
}

std::string* FindObject(Fault& fault, const std::string& key) {
  return key == "when"      ? &fault.when
         : key == "request" ? &fault.request
         : key == "answer"  ? &fault.answer
                            : nullptr;
}

// Throws unless `json` is empty or, for each method, the JSON of its message.
void CheckObject(const std::vector<const Method*>& methods, const char* key,
                 const std::string& json) {
  if (json.empty()) return;
  try {
    const Json object = Json::parse(json);
    for (const Method* method : methods)
      wire_schema::Encode(key == std::string("answer") ? *method->reply : *method->request, object);
    if (methods.empty()) throw std::invalid_argument("the schemas lack the method");
  } catch (const Json::exception&) {
    throw BadFault(key + ('=' + json) + " must be a JSON object");
  } catch (const std::invalid_argument& error) {
    throw BadFault(key + ('=' + json) + ": " + error.what());
  }
}

std::uint32_t ParseNumber(const std::string& key, const std::string& text) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end)
    throw BadFault(key + "='" + text + "': must be an integer from 0 to 4294967295");
  return number;
}

// One word of the string form: "reject", "delay=20".
void ParseWord(const std::string& word, Fault& fault) {
  const std::size_t equals = word.find('=');
  const std::string key = word.substr(0, equals);
  const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
  if (equals == std::string::npos || key == "status") {
    if (fault.kind != FaultKind::kNone)
      throw BadFault('\'' + word + "' is a second fault; METHOD:FAULT has only one");
    fault.kind = static_cast<FaultKind>(NumberOf(state_document::kFaults, key, "fault"));
    if (key == "status") fault.status = NumberOf(state_document::kStatuses, value, "status");
  } else if (key == "delay") {
    fault.delay_ms = ParseNumber(key, value);
  } else if (key == "times") {
    fault.times = ParseNumber(key, value);
  } else if (key == "after") {
    fault.after = ParseNumber(key, value);
  } else if (key == "then") {
    fault.then = value;
  } else if (std::string* const object = FindObject(fault, key)) {
    *object = value;
  } else {
    throw BadFault(
        "unknown '" + word +
        "'; use status=CODE, delay=MILLISECONDS, times=N, after=N, when=JSON, request=JSON, "
        "answer=JSON, then=METHOD or message=TEXT");
  }
}

// The methods that the pattern matches; at least one, but none for a path.
std::vector<const Method*> Matching(const std::string& pattern) {
  std::vector<const Method*> matching;
  if (pattern.compare(0, 1, "/") == 0) return matching;
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDapi})
    for (const Method& method : MethodsOf(daemon))
      if (Matches(pattern, FullName(daemon, method.name))) matching.push_back(&method);
  if (matching.empty())
    throw BadFault("unknown method '" + pattern +
                   "'; DAPI.* and NetworkManager.* match all methods of a daemon, * all methods");
  return matching;
}

}  // namespace

const char* Name(Daemon daemon) {
  return daemon == Daemon::kNetworkManager ? "NetworkManager" : "DAPI";
}

std::string FullName(Daemon daemon, const std::string& method) {
  return Name(daemon) + ('.' + method);
}

Fault ParseFault(const std::string& string) {
  const std::size_t colon = string.find(':');
  if (colon == std::string::npos)
    throw BadFault('\'' + string +
                   "' must be METHOD:FAULT, for example GetName:status=UNAVAILABLE");
  Fault fault;
  fault.method = string.substr(0, colon);
  for (std::size_t start = colon + 1; start < string.size();) {
    // A message comes last because it may contain commas.
    if (string.compare(start, std::strlen(kMessage), kMessage) == 0) {
      fault.message = string.substr(start + std::strlen(kMessage));
      break;
    }
    const std::size_t brace = string.find('{', start);
    std::size_t end = std::min(string.find(',', start), string.size());
    if (brace < end) end = std::min(string.find(',', EndOfObject(string, brace)), string.size());
    ParseWord(string.substr(start, end - start), fault);
    start = end + 1;
  }
  Check(fault);
  return fault;
}

std::string ToString(const Fault& fault) {
  std::string words;
  const auto add = [&](const std::string& word) { words += (words.empty() ? "" : ",") + word; };
  if (fault.kind == FaultKind::kStatus) {
    add(std::string("status=") + state_document::kStatuses[static_cast<std::size_t>(fault.status)]);
  } else if (fault.kind != FaultKind::kNone) {
    add(Name(fault.kind));
  }
  if (fault.delay_ms != 0) add("delay=" + std::to_string(fault.delay_ms));
  if (fault.after != 0) add("after=" + std::to_string(fault.after));
  if (fault.times != 0) add("times=" + std::to_string(fault.times));
  if (!fault.when.empty()) add("when=" + fault.when);
  if (!fault.request.empty()) add("request=" + fault.request);
  if (!fault.answer.empty()) add("answer=" + fault.answer);
  if (!fault.then.empty()) add("then=" + fault.then);
  if (!fault.message.empty()) add(kMessage + fault.message);
  return fault.method + ':' + words;
}

void Check(const Fault& fault) {
  const std::vector<const Method*> matching = Matching(fault.method);
  const bool is_edited = !fault.request.empty() || !fault.answer.empty() || !fault.then.empty();
  if (fault.kind == FaultKind::kNone && fault.delay_ms == 0 && !is_edited)
    throw BadFault("no fault given for " + fault.method);
  if (fault.kind != FaultKind::kNone && is_edited)
    throw BadFault(std::string("request, answer and then cannot be combined with ") +
                   Name(fault.kind));
  CheckObject(matching, "when", fault.when);
  CheckObject(matching, "request", fault.request);
  CheckObject(matching, "answer", fault.answer);
  if (!fault.then.empty() && FindWithoutParameters(fault.then) == nullptr)
    throw BadFault("then=" + fault.then + " must be a method without parameters");
  if (static_cast<std::size_t>(fault.status) >=
      state_document::kStatuses.size())  // negative ones, too
    throw BadFault(std::to_string(fault.status) + " is not a gRPC status code");
  if (fault.kind == FaultKind::kStatus && fault.status == 0)
    throw BadFault("the fault status requires a code other than OK, such as status=UNAVAILABLE");
  if (fault.kind != FaultKind::kStatus && (fault.status != 0 || !fault.message.empty()))
    throw BadFault(std::string("a status code or message is for the fault status, not for ") +
                   Name(fault.kind));
  if ((fault.kind == FaultKind::kReject || fault.kind == FaultKind::kIgnore) &&
      std::none_of(matching.begin(), matching.end(),
                   [](const Method* method) { return method->replies_success; }))
    throw BadFault(fault.method + " cannot " + Name(fault.kind) +
                   ": its reply has no field success");
  if (fault.kind == FaultKind::kStop &&
      ((!Stops(fault, Daemon::kDapi) && !Stops(fault, Daemon::kNetworkManager)) ||
       fault.delay_ms != 0 || fault.times != 0))
    throw BadFault("stop requires DAPI.* or NetworkManager.*, without delay and times");
  if (fault.kind == FaultKind::kGoaway &&
      ((!IsOfDaemon(fault, fault.kind, Daemon::kDapi) &&
        !IsOfDaemon(fault, fault.kind, Daemon::kNetworkManager)) ||
       fault.delay_ms == 0 || fault.times != 0))
    throw BadFault("goaway requires DAPI.* or NetworkManager.*, and delay, without times");
}

void CheckPattern(const std::string& pattern) { Matching(pattern); }

bool Matches(const std::string& pattern, const std::string& method) {
  const std::size_t dot = method.find('.');
  return pattern == "*" || pattern == method.substr(0, dot + 1) + '*' || pattern == method ||
         pattern == method.substr(dot + 1);
}

bool IsOfDaemon(const Fault& fault, FaultKind kind, Daemon daemon) {
  return fault.kind == kind && fault.method == FullName(daemon, "*");
}

bool Stops(const Fault& fault, Daemon daemon) {
  return IsOfDaemon(fault, FaultKind::kStop, daemon);
}

}  // namespace simulator
