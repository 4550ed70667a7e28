#include "tools/tool.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <new>
#include <system_error>

#include "NetworkgRPC_version.h"
#include "terminal/arguments.h"
#include "terminal/help.h"
#include "terminal/printable.h"
#include "terminal/prompt.h"
#include "tools/checkpoint.h"
#include "tools/command_line.h"
#include "tools/devices.h"
#include "tools/each_device.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/tunnel.h"
#include "tools/values.h"

namespace tool {
namespace {

constexpr const char* kName = "networkgrpc";

int Exit(ExitStatus status) { return static_cast<int>(status); }

// Once, at the end: a command that fails half way prints nothing.
int Print(const std::string& text, ExitStatus status) {
  std::cout << text << std::flush;
  if (std::cout) return Exit(status);
  std::perror("networkgrpc: cannot write");
  return Exit(ExitStatus::kFailed);
}

// The daemons accept nothing else, and the library does not check it.
bool IsUtf8(const std::string& text) {
  try {
    return !Json(text).dump().empty();
  } catch (const Json::type_error&) {
    return false;
  }
}

// "--yes=no" is no "--yes".
void RejectValuesOfFlags(CLI::App& command) {
  for (CLI::Option* option : command.get_options())
    if (option->get_expected_max() == 0) option->disable_flag_override();
  for (CLI::App* below : command.get_subcommands(nullptr)) RejectValuesOfFlags(*below);
}

std::string ExitStatusSection() {
  using terminal::Entry;
  return terminal::Section(
      "Exit status",
      Entry("0", "done") + Entry("1", "failed: not confirmed, or the value read back differs") +
          Entry("2", "the command line is wrong, or --yes is missing") +
          Entry("3", "a time limit expired; nothing was changed") +
          Entry("4", "the daemon rejected the request") +
          Entry("5", "the daemon answered with an error status") +
          Entry("6", "the connection or a time limit ended during a change: it may be done") +
          Entry("8", "the daemon cannot be reached; nothing was changed") +
          Entry("10", "no such interface, role, channel or switch mode, or no value of --get"));
}

std::string EnvironmentSection() {
  std::string entries;
  for (const client::Setting& it : client::kSettings)
    entries += terminal::Entry(it.variable, std::string(it.meaning) + "; default " + it.fallback);
  return terminal::Section(
      "Environment",
      entries +
          terminal::Entry("NETWORKGRPC_DEVICES",
                          "file of the devices for --on; default "
                          "/etc/networkgrpc/devices.toml, and ~/.config/networkgrpc/devices.toml, "
                          "which overrides it") +
          terminal::Entry("NO_COLOR", "if set and not empty, print without colour"));
}

std::string MoreHelp(const CommandLine& line, const CLI::App& command, bool all) {
  if (&command == &line.app)
    return ExitStatusSection() + EnvironmentSection() +
           terminal::Examples({"networkgrpc status", "networkgrpc doctor"});
  std::vector<std::string> examples;
  const auto add = [&](const CLI::App* verb) {
    const auto found = line.verbs.find(verb);
    if (found == line.verbs.end()) return;
    const auto& more = found->second.examples;
    examples.insert(examples.end(), more.begin(), more.end());
  };
  add(&command);
  for (const CLI::App* verb : command.get_subcommands(nullptr)) add(verb);
  return (all ? ExitStatusSection() : "") + terminal::Examples(examples);
}

}  // namespace

const char* OnOff(bool on) { return on ? "on" : "off"; }

const char* YesNoOrUnknown(const Json& value) {
  if (value.is_null()) return "unknown";
  return value.get<bool>() ? "yes" : "no";
}

const char* ShowApplied(const Json& result) {
  if (result["applied"].is_null()) return ", stored, perhaps applied\n";
  return result["applied"].get<bool>() ? ", stored and applied\n" : ", stored\n";
}

ToText ShowMember(const char* member) {
  return [member](const Json& result) {
    const Json& value = result[member];
    return (value.is_boolean() ? OnOff(value) : Text(value)) + "\n";
  };
}

Tool::Tool()
    : line(std::make_unique<CommandLine>("Show and change the settings of a networked amplifier",
                                         kName)) {
  CLI::App& app = line->app;
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_help_all_flag("--help-all", "Print the help of all commands below and exit");
  app.set_version_flag("-V,--version", std::string(kName) + " " + NETWORKGRPC_VERSION,
                       "Print the version and exit");
  app.formatter(std::make_shared<terminal::Help>(
      [this](const CLI::App& command, bool all) { return MoreHelp(*line, command, all); }));
  app.fallthrough();
  app.require_subcommand(1, 0);
  AddGlobalOptions();
}

Tool::~Tool() = default;

void Tool::AddGlobalOptions() {
  Command top = Top();
  top.Flag("--json", &json, "Print one JSON object instead of text");
  top.Option("--get", "FIELD[,FIELD]...", &get,
             "Print only these values of the result, one per line: paths in what --json prints")
      .Reject(FaultOfFields);
  top.Flag("--quiet", &quiet, "Print no result, only errors");
  top.AtMostOne({"--json", "--get", "--quiet"});
  top.Seconds("--timeout", &calls.timeout, 0.01, "Longest time for a call; default 30");
  top.Seconds("--total-timeout", &calls.total_timeout, 0.01,
              "Longest time for all calls together; default no limit");
  top.Flag("--verbose", &calls.verbose, "Report each call on standard error");
  top.Option("--network-manager", "ENDPOINT", &network_manager,
             "Endpoint of the network-manager daemon");
  top.Option("--dapi", "ENDPOINT", &dapi, "Endpoint of the Dante API daemon");
  top.Option("--on", "NAME,...", &on,
             "Act on these devices of 'networkgrpc devices', or on all; default: the endpoints "
             "of the environment")
      .Offer(Candidates::kDevices);
  top.Option("--host", "[USER@]HOST", &host, "Act on the device HOST, through ssh");
  top.AtMostOne({"--on", "--host"});
}

Command Tool::Top() { return {*line, line->app}; }

Command Tool::AddNoun(const std::string& name, const std::string& description,
                      const std::string& verb) {
  CLI::App& noun = *line->app.add_subcommand(name, description);
  line->verb_of_noun[&noun] = verb;
  noun.require_subcommand(verb.empty() ? 1 : 0, 1);
  return {*line, noun};
}

Command Tool::AddVerb(const Command& parent, const std::string& name, Verb verb) {
  const auto noun = line->verb_of_noun.find(&parent.App());
  const bool is_default = noun != line->verb_of_noun.end() && noun->second == name;
  CLI::App& command =
      *parent.App().add_subcommand(name, verb.description + (is_default ? " (default)" : ""));
  line->verbs[&command] = std::move(verb);
  return {*line, command};
}

void Tool::Undoable(Command& verb, Daemon of) {
  line->undoable[&verb.App()] = of;
  verb.Seconds("--confirm-within", &confirm_within, 0.1,
               "Undo the change unless it is confirmed in time");
}

Command Tool::AddOldSpelling(const Command& noun, const std::string& name, Verb verb) {
  noun.App().require_subcommand(0, 1);
  const Command command = AddVerb(noun, name, std::move(verb));
  command.App().group("");
  return command;
}

void Tool::Confirm(const std::function<std::vector<std::string>()>& find) const {
  if (checkpoint != nullptr) checkpoint->Announce();
  if (yes) return;
  const auto changes = find();
  if (!terminal::HasPerson())
    throw Failure(ExitStatus::kUsage, changes.front() +
                                          "; there is no terminal to ask for confirmation: "
                                          "--yes is required");
  for (const std::string& change : changes) std::cerr << terminal::Printable(change) + "\n";
  const Pause pause;
  if (!terminal::AnswersYes("Continue?"))
    throw Failure(ExitStatus::kFailed, "not confirmed: nothing was changed");
}

std::string Tool::ResultText(const Verb& verb, const Json& result) const {
  if (quiet || result.is_null()) return "";  // watch has none
  return get.empty() ? verb.show(result) : ValueLines(result, get);
}

int Tool::Fail(const Failure& failure) const {
  const auto found = line->Selected();
  if (json) return Print(JsonText(ErrorJson(found.name, failure)), failure.status);
  std::string text;
  std::string errors;
  try {
    text = ResultText(line->verbs.at(found.verb), failure.result);
  } catch (const Failure& without_value) {
    errors = ErrorLine(without_value.message);
  }
  const int status = Print(text, failure.status);
  std::cerr << errors + ErrorLine(failure.message);
  return status;
}

// What fails half way is undone at once; a change that was not begun needs nothing.
Json Tool::RunVerb(const Verb& verb) {
  if (confirm_within == 0) return verb.run();
  checkpoint =
      std::make_unique<Checkpoint>(line->undoable.at(line->Selected().verb), typed, confirm_within);
  BeforeFirstChange([this] { checkpoint->Begin(); });
  Json result;
  try {
    result = verb.run();
  } catch (Failure& failure) {
    if (checkpoint->HasBegun() && failure.outcome == Outcome::kNotDone) {
      checkpoint->Discard();
    } else if (checkpoint->HasBegun()) {
      checkpoint->RestoreAfter(failure);
    }
    throw;
  }
  if (checkpoint->HasBegun()) confirm_by = checkpoint->Settle();
  return result;
}

int Tool::RunHere() {
  const auto found = line->Selected();
  const Verb& verb = line->verbs.at(found.verb);
  for (const std::string& problem : AbandonedCheckpoints()) std::cerr << ErrorLine(problem);
  SetCallOptions(calls);
  try {
    const Json result = RunVerb(verb);
    if (!json) return Print(ResultText(verb, result), ExitStatus::kDone);
    Json object = ResultJson(found.name, result);
    if (!confirm_by.empty()) object["confirm_by"] = confirm_by;
    return Print(result.is_null() ? "" : JsonText(object), ExitStatus::kDone);
  } catch (const Failure& failure) {
    return Fail(failure);
  } catch (const std::bad_alloc&) {
    return Fail({ExitStatus::kFailed, "out of memory"});
  } catch (const std::exception& error) {
    return Fail({ExitStatus::kFailed, std::string("unexpected failure: ") + error.what()});
  }
}

// A file that each would replace.
void Tool::RejectForSeveral() const {
  const CLI::Option* output = line->Selected().verb->get_option_no_throw("--output");
  if (output != nullptr && output->count() > 0)
    throw Failure(ExitStatus::kUsage,
                  "--output with several devices: each would replace the file; use --on NAME");
}

int Tool::RunOnDevice(Device device) {
  if (!network_manager.empty()) device.network_manager = network_manager;
  if (!dapi.empty()) device.dapi = dapi;
  SetDevice(device.name);
  if (device.host.empty()) {
    SetEndpoint(Daemon::kNetworkManager, device.network_manager, device.network_manager);
    SetEndpoint(Daemon::kDante, device.dapi, device.dapi);
    return RunHere();
  }
  CheckHost(device.host);
  const std::string command = line->Selected().name;
  if (confirm_within > 0 || command == "checkpoint" || command == "confirm" ||
      command == "rollback")
    throw Failure(ExitStatus::kUsage,
                  "no checkpoint through ssh: nothing could restore the device once the connection "
                  "is lost; run networkgrpc there, with 'ssh -t " +
                      device.host + "'");
  const Tunnel tunnel(device, calls.timeout);
  const std::string there = " on " + device.host;
  SetEndpoint(Daemon::kNetworkManager, tunnel.NetworkManager(), device.network_manager + there);
  SetEndpoint(Daemon::kDante, tunnel.Dapi(), device.dapi + there);
  return RunHere();
}

int Tool::RunOnDevices(const std::vector<std::string>& arguments) {
  const std::string command = line->Selected().name;
  if (only_device.empty() && line->app.get_option("--host")->count() > 0)
    return RunOnDevice(DeviceOf(host, host));
  const bool is_named = line->app.get_option("--on")->count() > 0 || !only_device.empty();
  if (!is_named || command == "devices") {  // the environment, which every client reads
    if (!network_manager.empty())
      SetEndpoint(Daemon::kNetworkManager, network_manager, network_manager);
    if (!dapi.empty()) SetEndpoint(Daemon::kDante, dapi, dapi);
    return RunHere();
  }
  const std::vector<Device> devices = FindDevices(only_device.empty() ? on : only_device);
  if (devices.size() == 1) return RunOnDevice(devices.front());
  RejectForSeveral();
  if (command == "watch")
    return RunOnEach(devices, arguments, json ? Form::kJsonAsComes : Form::kLines);
  return RunOnEach(devices, arguments, json ? Form::kJson : Form::kText);
}

int Tool::Usage(const std::string& message, bool as_json) const {
  const std::string name = line->Selected().name;
  const std::string command = name.empty() ? "" : name + " ";
  const Failure failure(ExitStatus::kUsage, message + "; see 'networkgrpc " + command + "--help'");
  if (as_json) return Print(JsonText(ErrorJson(name, failure)), failure.status);
  std::cerr << ErrorLine(failure.message);
  return Exit(failure.status);
}

void Tool::ParseArranged(std::vector<std::string> arguments) {
  // "help interface set" is "interface set --help".
  if (!arguments.empty() && arguments.front() == "help") {
    arguments.erase(arguments.begin());
    arguments.emplace_back("--help");
  }
  RejectValuesOfFlags(line->app);
  arguments = terminal::Arranged(line->app, arguments);
  std::reverse(arguments.begin(), arguments.end());  // as the parser expects them
  line->app.parse(std::move(arguments));
  terminal::CheckArguments(line->app);
}

std::optional<int> Tool::Parse(const std::vector<std::string>& arguments) {
  // --json also applies to a command line that cannot be parsed.
  const bool as_json = std::count(arguments.begin(), arguments.end(), "--json") != 0;
  for (const std::string& argument : arguments)
    if (!IsUtf8(argument)) return Usage("an argument is not valid UTF-8", as_json);
  try {
    ParseArranged(arguments);
  } catch (const CLI::CallForHelp&) {
    return Print(line->app.help(), ExitStatus::kDone);
  } catch (const CLI::CallForAllHelp&) {
    return Print(line->app.help("", CLI::AppFormatMode::All), ExitStatus::kDone);
  } catch (const CLI::CallForVersion& version) {
    return Print(std::string(version.what()) + "\n", ExitStatus::kDone);
  } catch (const CLI::ParseError& error) {
    return Usage(terminal::Explain(line->app, error), as_json);
  }
  if (line->Selected().verb == nullptr) return Usage("a command is required", as_json);
  return std::nullopt;
}

int Tool::Run(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) typed += " " + argument;
  try {
    interrupt::Watch();
    return RunOnDevices(arguments);
  } catch (const Failure& failure) {
    return Fail(failure);
  } catch (const std::system_error& error) {
    return Fail({ExitStatus::kFailed, std::string("cannot start a thread: ") + error.what()});
  }
}

}  // namespace tool
