#include "tests/support/functions.h"

#include <iterator>
#include <map>
#include <utility>

#include "ostrevan/common.pb.h"

namespace support {
namespace {

ScriptedDaemon& DaemonOf(Device& device, const std::string& path) {
  const bool network = path.rfind(NetworkManagerPath(""), 0) == 0;
  return network ? *device.network_manager : *device.dapi;
}

}  // namespace

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

void ScriptSuccess(Device& device, const Function& function) {
  for (const Step& step : function.steps)
    DaemonOf(device, step.path).ScriptNext(step.path, {step.reply});
}

Answer AnswerWell(const Step* step, const std::string&) {
  return step != nullptr ? Answer{step->reply} : Failure(grpc::StatusCode::INVALID_ARGUMENT);
}

void ScriptForGood(Device& device, const std::vector<Function>& functions,
                   const Answering& answering) {
  std::map<std::string, std::map<std::string, Step>> by_path;
  for (const Function& function : functions)
    for (const Step& step : function.steps) by_path[step.path][step.request] = step;
  for (auto& [path, steps] : by_path) {
    const auto answer = [steps = std::move(steps), answering](const std::string& request) {
      const auto found = steps.find(request);
      return answering(found != steps.end() ? &found->second : nullptr, request);
    };
    DaemonOf(device, path).ScriptEach(path, answer);
  }
}

Step Ask(std::string path, const google::protobuf::MessageLite& request,
         const google::protobuf::MessageLite& reply, std::string line) {
  return {std::move(path), request.SerializeAsString(), reply.SerializeAsString(), false,
          std::move(line)};
}

Step Confirm(std::string path, const google::protobuf::MessageLite& request, std::string line) {
  const std::string yes("\x08\x01", 2);
  return {std::move(path), request.SerializeAsString(), yes, true, std::move(line)};
}

Function Changer(std::string name, std::function<bool()> function, std::vector<Step> steps) {
  return {std::move(name), true,
          [function = std::move(function)](std::string& outputs) {
            outputs.clear();
            return function();
          },
          std::move(steps)};
}

}  // namespace support
