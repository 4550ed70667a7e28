#include "tools/output.h"

#include <array>

#include "terminal/printable.h"

namespace tool {
namespace {

constexpr int kSchema = 3;

std::string& NamedDevice() {
  static std::string device;
  return device;
}

Json Head(const std::string& command) {
  Json head = {{"schema", kSchema}};
  if (!NamedDevice().empty()) head["device"] = NamedDevice();
  head["command"] = command;
  return head;
}

}  // namespace

void SetDevice(const std::string& name) { NamedDevice() = name; }

Json ResultJson(const std::string& command, const Json& result) {
  Json object = Head(command);
  object["result"] = result;
  return object;
}

Json ErrorJson(const std::string& command, const Failure& failure) {
  Json object = Head(command);
  if (!failure.result.is_null()) object["result"] = failure.result;
  object["error"] = {{"code", static_cast<int>(failure.status)},
                     {"name", Name(failure.status)},
                     {"daemon", Name(failure.daemon)},
                     {"endpoint", failure.daemon == Daemon::kNone ? "" : Endpoint(failure.daemon)},
                     {"rpc", failure.rpc},
                     {"grpc_status", failure.grpc_status},
                     {"daemon_message", failure.daemon_message},
                     {"message", failure.message},
                     {"outcome", Name(failure.outcome)}};
  return object;
}

std::string UtcTime(std::time_t time) {
  std::tm parts{};
  gmtime_r(&time, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text.data();
}

std::string JsonText(const Json& value) {
  return terminal::EscapedInJson(value.dump(-1, ' ', false, Json::error_handler_t::replace)) + "\n";
}

std::string ErrorLine(const std::string& message) {
  return "networkgrpc: " + terminal::Printable(message) + "\n";
}

}  // namespace tool
