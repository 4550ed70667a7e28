#include "simulator/program/control_commands.h"

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

Json Faults(Simulator& device) {
  Json faults = Json::array();
  for (const Fault& fault : device.ListFaults()) faults.push_back(ToString(fault));
  return faults;
}

Daemon DaemonOf(const std::string& name) {
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDapi})
    if (name == Name(daemon)) return daemon;
  throw std::runtime_error("unknown daemon '" + name + "'; use NetworkManager or DAPI");
}

// A command without a result of its own.
template <class Action>
Command Do(Action action) {
  return [action](Simulator& device, const std::string& argument) {
    action(device, argument);
    return Json(nullptr);
  };
}

const std::map<std::string, Command>& Commands() {
  using std::string;
  static const std::map<string, Command> commands{
      {"state", [](Simulator& it, const string&) { return Json::parse(it.StateJson()); }},
      {"calls", [](Simulator& it, const string&) { return Calls(it); }},
      {"faults", [](Simulator& it, const string&) { return Faults(it); }},
      {"forget", Do([](Simulator& it, const string&) { it.ForgetCalls(); })},
      {"fault", Do([](Simulator& it, const string& fault) { it.Inject(fault); })},
      {"clear", Do([](Simulator& it, const string& method) {
         it.ClearFaults(method == "all" ? "" : method);
       })},
      {"stop", Do([](Simulator& it, const string& name) { it.StopDaemon(DaemonOf(name)); })},
      {"start", Do([](Simulator& it, const string& name) { it.StartDaemon(DaemonOf(name)); })},
      {"drop", Do([](Simulator& it, const string& name) { it.DropConnections(DaemonOf(name)); })}};
  return commands;
}

Json Result(std::vector<Simulator>& devices, const Json& request) {
  const auto number = request.value("device", std::int64_t{1});
  if (number < 1 || number > static_cast<std::int64_t>(devices.size()))
    throw std::runtime_error("unknown device " + std::to_string(number) + "; use 1 to " +
                             std::to_string(devices.size()));
  const auto name = request.value("command", std::string());
  const auto command = Commands().find(name);
  if (command == Commands().end()) throw std::runtime_error("unknown command '" + name + "'");
  return command->second(devices[static_cast<std::size_t>(number - 1)],
                         request.value("argument", std::string()));
}

}  // namespace

std::string AnswerControlRequest(std::vector<Simulator>& devices, const std::string& request) {
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
