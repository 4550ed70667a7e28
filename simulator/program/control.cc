#include "simulator/program/control.h"

#include <functional>
#include <map>
#include <stdexcept>

#include "simulator/json.h"

namespace simulator {
namespace {

using Command = std::function<Json(Simulator& device, const std::string& argument)>;

Json Calls(const Simulator& device) {
  Json calls = Json::array();
  for (const ReceivedCall& call : device.Calls())
    calls.push_back({{"number", call.number},
                     {"method", call.method},
                     {"request", Json::parse(call.request)},
                     {"fault", call.fault.empty() ? Json(nullptr) : Json(call.fault)}});
  return calls;
}

Json FaultTexts(Simulator& device) {
  Json faults = Json::array();
  for (const Fault& fault : device.ListFaults()) faults.push_back(ToText(fault));
  return faults;
}

Daemon DaemonOf(const std::string& name) {
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDapi})
    if (name == Name(daemon)) return daemon;
  throw std::runtime_error("'" + name + "' is no daemon: NetworkManager, DAPI");
}

// A command without a result of its own.
template <class Does>
Command Doing(Does does) {
  return [does](Simulator& device, const std::string& argument) {
    does(device, argument);
    return Json(nullptr);
  };
}

const std::map<std::string, Command>& Commands() {
  using Text = std::string;
  static const std::map<std::string, Command> commands{
      {"state",
       [](Simulator& it, const Text&) { return Json::parse(WriteState(it.CurrentState())); }},
      {"calls", [](Simulator& it, const Text&) { return Calls(it); }},
      {"faults", [](Simulator& it, const Text&) { return FaultTexts(it); }},
      {"forget", Doing([](Simulator& it, const Text&) { it.ForgetCalls(); })},
      {"fault", Doing([](Simulator& it, const Text& fault) { it.Inject(fault); })},
      {"clear", Doing([](Simulator& it, const Text& method) {
         it.ClearFaults(method == "all" ? "" : method);
       })},
      {"stop", Doing([](Simulator& it, const Text& name) { it.StopDaemon(DaemonOf(name)); })},
      {"start", Doing([](Simulator& it, const Text& name) { it.StartDaemon(DaemonOf(name)); })},
      {"drop", Doing([](Simulator& it, const Text& name) { it.DropConnections(DaemonOf(name)); })}};
  return commands;
}

Json Result(const Devices& devices, const Json& request) {
  const auto number = request.value("device", std::int64_t{1});
  if (number < 1 || number > static_cast<std::int64_t>(devices.size()))
    throw std::runtime_error("there is no device " + std::to_string(number) + ", only 1 to " +
                             std::to_string(devices.size()));
  const auto name = request.value("command", std::string());
  const auto command = Commands().find(name);
  if (command == Commands().end())
    throw std::runtime_error("'" + name + "' is no command that this simulator knows");
  return command->second(*devices[static_cast<std::size_t>(number - 1)],
                         request.value("argument", std::string()));
}

}  // namespace

std::string AnswerControl(const Devices& devices, const std::string& request) {
  Json answer;
  try {
    const Json result = Result(devices, Json::parse(request));
    answer = {{"ok", true}, {"result", result}};
  } catch (const std::exception& error) {
    answer = {{"ok", false}, {"error", error.what()}};
  }
  return answer.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace simulator
