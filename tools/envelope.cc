#include "tools/envelope.h"

#include "terminal/printable.h"

namespace tool {
namespace {

constexpr int kSchema = 1;

Json Head(const std::string& command) { return {{"schema", kSchema}, {"command", command}}; }

}  // namespace

Json SuccessEnvelope(const std::string& command, const Json& result) {
  Json envelope = Head(command);
  envelope["result"] = result;
  return envelope;
}

Json FailureEnvelope(const std::string& command, const Failure& failure) {
  Json envelope = Head(command);
  if (!failure.result.is_null()) envelope["result"] = failure.result;
  envelope["error"] = {{"code", static_cast<int>(failure.status)},
                       {"name", Name(failure.status)},
                       {"daemon", Name(failure.daemon)},
                       {"message", failure.what()}};
  return envelope;
}

std::string JsonText(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string ErrorLine(const Failure& failure) {
  return "networkgrpc: " + terminal::Printable(failure.what()) + "\n";
}

}  // namespace tool
