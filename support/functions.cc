#include "support/functions.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <stdexcept>
#include <utility>

#include "ostrevan/common.pb.h"

namespace support {

std::ostream& operator<<(std::ostream& out, const Function& function) {
  return out << function.name;
}

std::vector<Function> AllFunctions() {
  std::vector<Function> all = NetworkFunctions();
  std::vector<Function> dante = DanteFunctions();
  all.insert(all.end(), std::make_move_iterator(dante.begin()),
             std::make_move_iterator(dante.end()));
  return all;
}

Function FunctionNamed(const std::string& name) {
  std::vector<Function> all = AllFunctions();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const Function& function) { return function.name == name; });
  if (found == all.end()) throw std::out_of_range("no function " + name);
  return std::move(*found);
}

void ScriptOnce(Device& device, const Function& function) {
  for (const Step& step : function.steps)
    device.DaemonOf(step.path).ScriptNext(step.path, {step.reply});
}

Answer AnswerWell(const Step* step, const std::string&) {
  return step != nullptr ? Answer{step->reply} : Failure(grpc::StatusCode::INVALID_ARGUMENT);
}

void ScriptAlways(Device& device, const std::vector<Function>& functions,
                  const Answering& answering) {
  std::map<std::string, std::map<std::string, Step>> by_path;
  for (const Function& function : functions)
    for (const Step& step : function.steps) by_path[step.path][step.request] = step;
  for (auto& [path, steps] : by_path) {
    const auto answer = [steps = std::move(steps), answering](const std::string& request) {
      const auto found = steps.find(request);
      return answering(found != steps.end() ? &found->second : nullptr, request);
    };
    device.DaemonOf(path).ScriptEach(path, answer);
  }
}

Step ReadStep(std::string path, const google::protobuf::MessageLite& request,
              const google::protobuf::MessageLite& reply, std::string line) {
  return {std::move(path), request.SerializeAsString(), reply.SerializeAsString(), false,
          std::move(line)};
}

Step ChangeStep(std::string path, const google::protobuf::MessageLite& request, std::string line) {
  const std::string yes("\x08\x01", 2);
  return {std::move(path), request.SerializeAsString(), yes, true, std::move(line)};
}

Function Changer(std::string name, bool (*call)(), std::vector<Step> steps) {
  Function made{std::move(name), call,
                [call](std::string& outputs) {
                  outputs.clear();
                  return call();
                },
                std::move(steps)};
  made.exception_line = "libNetworkgRPC: C++ exception in " + made.name + "(): std::bad_alloc\n";
  return made;
}

Function WithNameOnlyExceptionLine(Function function) {
  function.exception_line = "libNetworkgRPC: ERROR: exception in " + function.name + "\n";
  return function;
}

}  // namespace support
