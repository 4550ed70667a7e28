#include "support/functions.h"

#include <iterator>
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

void ScriptSuccess(Device& device, const Function& function) {
  for (const Step& step : function.steps) {
    const bool network = step.path.rfind(NetworkManagerPath(""), 0) == 0;
    ScriptedDaemon& daemon = network ? *device.network_manager : *device.dapi;
    daemon.ScriptNext(step.path, {step.reply});
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
