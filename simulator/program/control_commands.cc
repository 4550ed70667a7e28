#include "simulator/program/control_commands.h"

#include <functional>
#include <map>
#include <stdexcept>

#include "state_document/parse.h"

namespace simulator {
namespace {

using Handler = std::function<Json(Simulator& device, const Json& argument)>;

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

Simulator& DeviceOf(std::vector<Simulator>& devices, std::int64_t number) {
  if (number < 1 || number > static_cast<std::int64_t>(devices.size()))
    throw std::runtime_error("unknown device " + std::to_string(number) + "; use 1 to " +
                             std::to_string(devices.size()));
  return devices[static_cast<std::size_t>(number - 1)];
}

Daemon DaemonOf(const std::string& name) {
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDapi})
    if (name == Name(daemon)) return daemon;
  throw std::runtime_error("unknown daemon '" + name + "'; use NetworkManager or DAPI");
}

std::string StringOf(const Json& argument, const std::string& what) {
  if (!argument.is_string()) throw std::runtime_error(what + " must be a string");
  return argument.get<std::string>();
}

// Of one string or of several.
template <class Use>
void ForEach(const Json& argument, const std::string& what, Use use) {
  if (!argument.is_array()) return use(StringOf(argument, what));
  for (const Json& entry : argument) use(StringOf(entry, what));
}

void Clear(Simulator& device, const std::string& method) {
  device.ClearFaults(method == "all" ? "" : method);
}

std::vector<StateChange> Changes(const Json& argument) {
  if (!argument.is_object()) throw std::runtime_error("set requires an object of paths and values");
  std::vector<StateChange> changes;
  for (const auto& [path, value] : argument.items())
    changes.push_back({path, value.is_string() ? value.get<std::string>() : value.dump()});
  return changes;
}

// A command without a result of its own.
template <class Action>
Handler Do(Action action) {
  return [action](Simulator& device, const Json& argument) {
    action(device, argument);
    return Json(nullptr);
  };
}

// A command for one daemon.
Handler DoTo(void (Simulator::*action)(Daemon)) {
  return Do([action](Simulator& it, const Json& name) {
    (it.*action)(DaemonOf(StringOf(name, "DAEMON")));
  });
}

const std::map<std::string, Handler>& Commands() {
  using std::string;
  static const std::map<string, Handler> commands{
      {"state", [](Simulator& it, const Json&) { return Json::parse(it.StateJson()); }},
      {"calls", [](Simulator& it, const Json&) { return Calls(it); }},
      {"faults", [](Simulator& it, const Json&) { return Faults(it); }},
      {"forget", Do([](Simulator& it, const Json&) { it.ForgetCalls(); })},
      {"set", Do([](Simulator& it, const Json& argument) { it.Set(Changes(argument)); })},
      {"load", Do([](Simulator& it, const Json& state) { it.Load(state.dump()); })},
      {"fault", Do([](Simulator& it, const Json& argument) {
         ForEach(argument, "FAULT", [&it](const string& fault) { it.Inject(fault); });
       })},
      {"clear", Do([](Simulator& it, const Json& argument) {
         ForEach(argument, "METHOD", [&it](const string& method) { Clear(it, method); });
       })},
      {"stop", DoTo(&Simulator::StopDaemon)},
      {"start", DoTo(&Simulator::StartDaemon)},
      {"restart", DoTo(&Simulator::RestartDaemon)},
      {"drop", DoTo(&Simulator::DropConnections)}};
  return commands;
}

Json Receivers(const std::vector<Device>& devices, const std::string& name,
               const std::string& channel) {
  Json receivers = Json::array();
  for (const Device& device : devices)
    for (const auto& [rx_channel, link] : device.dante.links)
      if (!link.raw.has_value() && link.flag5 && link.device_name == name &&
          link.channel_name == channel)
        receivers.push_back({{"device", device.dante.name}, {"rx_channel", rx_channel}});
  return receivers;
}

// Every device with its streams and who receives them.
Json DescribeAll(std::vector<Simulator>& devices) {
  std::vector<Device> models;
  for (Simulator& device : devices)
    models.push_back(device.WithDevice([](const Device& it) { return it; }));
  Json all = Json::array();
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const Dante& dante = models[i].dante;
    Json streams = Json::array();
    for (const Channel& channel : dante.tx)
      streams.push_back(
          {{"channel", channel.name}, {"receivers", Receivers(models, dante.name, channel.name)}});
    all.push_back({{"device", i + 1},
                   {"name", dante.name},
                   {"network_manager_url", devices[i].NetworkManagerUrl()},
                   {"grpc_dapi_url", devices[i].DapiUrl()},
                   {"streams", streams}});
  }
  return all;
}

// Not yet a result for a command that waits.
std::optional<Json> Result(std::vector<Simulator>& devices, const Json& request) {
  const auto device = request.value("device", std::int64_t{1});
  const auto name = request.value("command", std::string());
  const Json argument = request.value("argument", Json(""));
  if (name == "devices") return DescribeAll(devices);
  if (name != "wait") return Perform(devices, device, name, argument);
  const auto count = request.value("count", std::size_t{1});
  const bool is_over = DeviceOf(devices, device).CountCalls(StringOf(argument, "METHOD")) >= count;
  return is_over ? std::optional<Json>(Json(nullptr)) : std::nullopt;
}

}  // namespace

void CheckArgument(const std::string& command, const Json& argument) {
  if (command == "fault") ForEach(argument, "fault", [](const auto& it) { ParseFault(it); });
  if (command == "clear")
    ForEach(argument, "clear", [](const auto& it) { CheckPattern(it == "all" ? "*" : it); });
  if (command == "wait") CheckPattern(StringOf(argument, "call"));
  if (command == "set") Changes(argument);
  if (command == "load" && !argument.is_object())
    throw std::runtime_error("load requires a state document");
  if (command == "stop" || command == "start" || command == "restart" || command == "drop")
    DaemonOf(StringOf(argument, command));
}

Json Perform(std::vector<Simulator>& devices, std::int64_t device, const std::string& name,
             const Json& argument) {
  const auto command = Commands().find(name);
  if (command == Commands().end()) throw std::runtime_error("unknown command '" + name + "'");
  return command->second(DeviceOf(devices, device), argument);
}

std::optional<std::string> AnswerControlRequest(std::vector<Simulator>& devices,
                                                const std::string& request) {
  Json answer;
  try {
    const std::optional<Json> result = Result(devices, state_document::ParseJson(request));
    if (!result.has_value()) return std::nullopt;
    answer = {{"ok", true}, {"result", *result}};
  } catch (const std::exception& error) {
    answer = {{"ok", false}, {"error", error.what()}};
  }
  return answer.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace simulator
