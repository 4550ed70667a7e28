#include "simulator/program/scenario.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "simulator/fault.h"
#include "simulator/program/control_commands.h"
#include "simulator/program/program_options.h"
#include "state_document/document.h"
#include "state_document/parse.h"
#include "terminal/printable.h"

namespace simulator {
namespace {

constexpr double kLongest = 86400;  // seconds
constexpr std::array<const char*, 8> kCommands{"set",  "load",  "fault",   "clear",
                                               "stop", "start", "restart", "drop"};
constexpr std::array<const char*, 4> kTriggers{"after", "call", "count", "device"};

template <class List>
bool Has(const List& list, const std::string& word) {
  return std::find(list.begin(), list.end(), word) != list.end();
}

// Ends the connections of a daemon, so that it cannot answer the call before.
bool EndsCalls(const std::string& command) {
  return command == "stop" || command == "restart" || command == "drop";
}

void CheckMembers(const Json& step) {
  if (!step.is_object()) throw std::runtime_error("must be an object");
  int commands = 0;
  for (const auto& [name, value] : step.items()) {
    if (Has(kCommands, name)) {
      ++commands;
      CheckArgument(name, value);
    } else if (!Has(kTriggers, name)) {
      throw std::runtime_error("unknown member '" + name + "'");
    }
  }
  if (commands > 1) throw std::runtime_error("only one of its members can be a command");
  if (step.contains("after") && step.contains("call"))
    throw std::runtime_error("after and call cannot be combined");
  if (step.contains("count") && !step.contains("call"))
    throw std::runtime_error("count requires call");
}

int Integer(const Json& step, const char* name) {
  const Json value = step.value(name, Json(1));
  if (!value.is_number_integer() || value < 1 || value > 1000000)
    throw std::runtime_error(std::string(name) + ": must be an integer from 1 to 1000000");
  return value.get<int>();
}

Json Read(const std::string& file) {
  const std::string text = state_document::ReadTextFile(file);
  try {
    return state_document::ParseJson(text);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

}  // namespace

Scenario::Scenario(std::string given) : file(std::move(given)) {
  const Json document = Read(file);
  if (!document.is_object() || document.size() != 1 || !document.contains("steps") ||
      !document["steps"].is_array())
    throw std::runtime_error(file + R"(: must be a JSON object {"steps": [...]})");
  std::size_t number = 0;
  for (const Json& step : document["steps"]) {
    try {
      ReadStep(++number, step);
    } catch (const std::exception& error) {
      throw std::runtime_error(file + ": step " + std::to_string(number) + ": " + error.what());
    }
  }
}

void Scenario::ReadStep(std::size_t number, const Json& step) {
  CheckMembers(step);
  const int device = Integer(step, "device");
  if (groups.empty() || step.contains("after") || step.contains("call")) {
    Group& group = groups.emplace_back();
    group.device = device;
    group.count = static_cast<unsigned>(Integer(step, "count"));
    const Json after = step.value("after", Json(0));
    if (!after.is_number() || after < 0 || after > kLongest)
      throw std::runtime_error("after: must be a number of seconds from 0 to 86400");
    group.after = after.get<double>();
    const Json call = step.value("call", Json(""));
    if (step.contains("call")) CheckArgument("wait", call);
    group.call = call.get<std::string>();
  }
  for (const auto& [name, value] : step.items())
    if (Has(kCommands, name)) groups.back().actions.push_back({number, device, name, value});
}

void Scenario::End() {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    ends = true;
  }
  changed.notify_all();
  if (thread.joinable()) thread.join();
  for (const Hooks::Resume& resume : std::exchange(triggered, {})) resume(true);
}

bool Scenario::Hold(int device, const std::string& method, const Hooks::Resume& resume) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (ends || armed == groups.size()) return false;
  const Group& group = groups[armed];
  if (group.call.empty() || group.device != device || !Matches(group.call, method)) return false;
  if (++seen < group.count) return false;
  // The next call can be one of the next group already.
  ++armed;
  seen = 0;
  triggered.push_back(resume);
  changed.notify_all();
  return true;
}

void Scenario::Start(Perform perform) {
  thread = std::thread([this, perform = std::move(perform)] { Run(perform); });
}

void Scenario::Run(const Perform& perform) {
  for (const Group& group : groups) {
    Hooks::Resume resume;
    if (!Await(group, resume)) return;
    CarryOut(group, perform, std::move(resume));
  }
}

// False if the scenario is to end.
bool Scenario::Await(const Group& group, Hooks::Resume& resume) {
  std::unique_lock<std::mutex> lock(mutex);
  if (group.call.empty()) {
    changed.wait_for(lock, std::chrono::duration<double>(group.after), [this] { return ends; });
    if (!ends) ++armed;
    return !ends;
  }
  changed.wait(lock, [this] { return ends || !triggered.empty(); });
  if (ends) return false;
  resume = std::move(triggered.front());
  triggered.pop_front();
  return true;
}

void Scenario::CarryOut(const Group& group, const Perform& perform, Hooks::Resume resume) {
  for (const Action& action : group.actions) {
    if (resume && EndsCalls(action.command)) std::exchange(resume, nullptr)(false);
    try {
      perform(action.device, action.command, action.argument);
    } catch (const std::exception& error) {
      std::cerr << kProgramName << ": "
                << terminal::Printable(file + ": step " + std::to_string(action.number) + ": " +
                                       error.what())
                << '\n';
    }
  }
  if (resume) resume(true);
}

}  // namespace simulator
