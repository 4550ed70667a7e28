// Completion of a command line: the shells' scripts call `networkgrpc __complete`.
#include <algorithm>
#include <cstdio>
#include <iostream>

#include "terminal/arguments.h"
#include "terminal/printable.h"
#include "tools/call.h"
#include "tools/command_line.h"
#include "tools/dante.h"
#include "tools/devices.h"
#include "tools/interface.h"
#include "tools/tool.h"

namespace tool {
namespace {

// Shorter than what a person perceives as a hang, with time to start.
constexpr double kLimit = 0.25;

struct Candidate {
  std::string text;
  std::string description;
};
using List = std::vector<Candidate>;

List Channels(const dapi::Channels& channels) {
  List list;
  for (const auto& it : channels.channels()) list.push_back({std::to_string(it.id()), it.name()});
  return list;
}

List Interfaces(bool by_id) {
  List list;
  for (const Interface& it : ReadInterfaces())
    list.push_back(by_id ? Candidate{std::to_string(it.id), it.name} : Candidate{it.name, it.role});
  return list;
}

List SwitchModes() {
  List list;
  const auto modes = Read(rpc::kGetAvailableSwitchModes, "list the switch modes");
  for (const auto& it : modes.modes()) list.push_back({std::to_string(it.id()), it.name()});
  return list;
}

List SampleRates() {
  List list;
  for (const std::uint32_t it : ReadSampleRates()) list.push_back({std::to_string(it), ""});
  return list;
}

List DeviceNames() {
  List list;
  for (const Device& it : ReadDevices()) list.push_back({it.name, it.host});
  return list;
}

List Offered(Candidates what) {
  switch (what) {
    case Candidates::kInterfaceNames:
      return Interfaces(false);
    case Candidates::kInterfaceIds:
      return Interfaces(true);
    case Candidates::kTxChannels:
      return Channels(ReadTxChannels());
    case Candidates::kRxChannels:
      return Channels(ReadRxChannels());
    case Candidates::kSwitchModes:
      return SwitchModes();
    case Candidates::kSampleRates:
      return SampleRates();
    case Candidates::kOnOff:
      return {{"on", ""}, {"off", ""}};
    case Candidates::kDevices:
      return DeviceNames();
    case Candidates::kFiles:
      return {{"", "a file"}};  // the shell completes it
    case Candidates::kNothing:
      break;
  }
  return {};
}

bool IsOption(const std::string& word) { return word.size() > 1 && word[0] == '-'; }

// What the last word of a command line can be.
class Position {
 public:
  Position(const CLI::App& root, const std::vector<std::string>& words) : command(&root) {
    for (std::size_t i = 0; i + 1 < words.size(); ++i) Pass(words[i]);
    Begin(words.back());
  }

  const CLI::App& Command() const { return *command; }

  /// The option that requires a value, else the next argument, else null.
  const CLI::Option* Wanted() const {
    if (option != nullptr) return option;
    std::size_t left = arguments;
    for (const CLI::Option* it : command->get_options())
      if (it->get_positional() && left-- == 0) return it;
    return nullptr;
  }
  bool WantsCommand() const { return option == nullptr && arguments == 0; }
  bool WantsOption() const { return option == nullptr && start[0] == '-'; }

  /// What has been typed of the wanted value, and what precedes it in the same
  /// word.
  const std::string& Start() const { return start; }
  const std::string& Prefix() const { return prefix; }

  /// The value given for an option of every command; empty if none.
  std::string ValueOf(const CLI::Option& it) const {
    const auto found = values.find(&it);
    return found != values.end() ? found->second : "";
  }

 private:
  void Pass(const std::string& word) {
    if (option != nullptr) {
      values[option] = word;
      option = nullptr;
    } else if (IsOption(word)) {
      const std::size_t equals = word.find('=');
      const CLI::Option* it = FindOption(word.substr(0, equals));
      if (it != nullptr && equals != std::string::npos) values[it] = word.substr(equals + 1);
      if (it != nullptr && equals == std::string::npos && terminal::HasValue(*it)) option = it;
    } else if (const auto meant = terminal::Meant(*command, word);
               arguments == 0 && meant.size() == 1) {
      command = meant.front();
    } else {
      ++arguments;
    }
  }

  void Begin(const std::string& word) {
    start = word;
    const std::size_t equals = word.find('=');
    if (option != nullptr || !IsOption(word) || equals == std::string::npos) return;
    option = FindOption(word.substr(0, equals));
    if (option == nullptr) return;
    prefix = word.substr(0, equals + 1);
    start.erase(0, equals + 1);
  }

  const CLI::Option* FindOption(const std::string& name) const {
    return terminal::FindOption(*command, name);
  }

  const CLI::App* command;
  const CLI::Option* option = nullptr;
  std::size_t arguments = 0;
  std::string start;
  std::string prefix;
  std::map<const CLI::Option*, std::string> values;
};

// The options of the command and those of every command, each once.
List Options(const CLI::App& command, const CLI::App& root) {
  std::map<std::string, std::string> options;
  for (const CLI::App* of : {&command, &root})
    for (const CLI::Option* it : of->get_options())
      for (const std::string& name : it->get_lnames())
        options.emplace("--" + name, it->get_description());
  List list;
  for (const auto& [name, description] : options) list.push_back({name, description});
  return list;
}

// One candidate per line, without those that are not printable.
std::string CompletionLines(const List& list, const Position& position) {
  const std::string& start = position.Start();
  std::string text;
  for (const Candidate& it : list)
    if ((it.text.empty() || it.text.compare(0, start.size(), start) == 0) &&
        terminal::Printable(it.text) == it.text)
      text += (it.text.empty() ? "" : position.Prefix() + it.text) + "\t" +
              terminal::Printable(it.description) + "\n";
  return text;
}

// Nothing if the daemon cannot say.
List FromDevice(Candidates what) {
  try {
    return Offered(what);
  } catch (const Failure&) {
    return {};
  }
}

bool IsOfDevice(Candidates what) {
  return what != Candidates::kOnOff && what != Candidates::kFiles && what != Candidates::kDevices;
}

// False if the command line names another device than one with endpoints on this machine:
// ssh could ask for a passphrase.
bool UseDevice(const Position& position, const CLI::App& app) {
  const auto value = [&](const char* option) { return position.ValueOf(*app.get_option(option)); };
  if (!value("--host").empty()) return false;
  Device device{"", value("--network-manager"), value("--dapi"), "", ""};
  if (!value("--on").empty()) {
    try {
      const std::vector<Device> named = FindDevices(value("--on"));
      if (named.size() != 1 || !named.front().host.empty()) return false;
      if (device.network_manager.empty()) device.network_manager = named.front().network_manager;
      if (device.dapi.empty()) device.dapi = named.front().dapi;
    } catch (const Failure&) {
      return false;
    }
  }
  if (!device.network_manager.empty())
    SetEndpoint(Daemon::kNetworkManager, device.network_manager, device.network_manager);
  if (!device.dapi.empty()) SetEndpoint(Daemon::kDante, device.dapi, device.dapi);
  return true;
}

}  // namespace

int Tool::Complete(const std::vector<std::string>& words) {
  if (words.empty()) return 0;
  // What gRPC prints would appear in the middle of the command line.
  if (std::freopen("/dev/null", "w", stderr) == nullptr) return 0;
  SetCallOptions({kLimit, kLimit, false});
  const CLI::App& app = line->app;
  const Position position(app, words);
  const bool reaches_device = UseDevice(position, app);

  List list;
  const CLI::Option* wanted = position.Wanted();
  if (position.WantsOption()) {
    list = Options(position.Command(), app);
  } else if (wanted != nullptr) {
    const auto found = line->candidates.find(wanted);
    if (found != line->candidates.end() && (reaches_device || !IsOfDevice(found->second)))
      list = FromDevice(found->second);
  }
  if (position.WantsCommand() && !position.WantsOption())
    for (const CLI::App* it : position.Command().get_subcommands(terminal::IsShown))
      list.push_back({it->get_name(), it->get_description()});
  std::cout << CompletionLines(list, position) << std::flush;
  return 0;
}

}  // namespace tool
