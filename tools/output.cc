#include "tools/output.h"

#include "terminal/printable.h"

namespace tool {
namespace {

constexpr int kSchema = 1;

Json Head(const std::string& command) { return {{"schema", kSchema}, {"command", command}}; }

}  // namespace

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
                     {"message", failure.what()}};
  return object;
}

std::string JsonText(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string ErrorLine(const Failure& failure) {
  return "networkgrpc: " + terminal::Printable(failure.what()) + "\n";
}

}  // namespace tool
