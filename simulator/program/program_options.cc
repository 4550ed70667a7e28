#include "simulator/program/program_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <set>

#include "NetworkgRPC_version.h"
#include "client/environment.h"
#include "simulator/program/program_help.h"
#include "terminal/arguments.h"
#include "terminal/help.h"
#include "terminal/printable.h"

namespace simulator {
namespace {

constexpr int kBadOptions = 2;
constexpr int kLastPort = 65535;
constexpr int kMostChannels = 512;
constexpr int kMostDevices = 64;
constexpr const char* kAutomatic = "auto";
constexpr const char* kUnix = "unix:";

// --- Options -------------------------------------------------------------------

CLI::Option* AddNumber(CLI::App& app, const std::string& name, int& value, int largest,
                       const std::string& description) {
  const std::string range =
      ", 0 to " + std::to_string(largest) + "; default " + std::to_string(value);
  return terminal::AddInteger(app, name, value, description + range, 0, largest)->type_name("N");
}

// The path of the control socket 'auto'; empty if the system has no folder for it.
std::string AutomaticControl() {
  const char* const folder = std::getenv("XDG_RUNTIME_DIR");
  if (folder == nullptr || *folder == '\0') return "";
  return std::string(folder) + '/' + kProgramName + "/control";
}

// "unix:PATH" as the ready line has it, or a path.
std::string ControlPath(const std::string& given) {
  return given.compare(0, std::strlen(kUnix), kUnix) == 0 ? given.substr(std::strlen(kUnix))
                                                          : given;
}

void ChooseControlToListen(ProgramOptions& options) {
  const bool is_automatic = options.control == kAutomatic;
  options.control = is_automatic ? AutomaticControl() : ControlPath(options.control);
  options.has_private_control = is_automatic && options.control.empty();
}

// `given` is empty if the option is not.
std::string ControlToAsk(std::string given) {
  const char* const announced = std::getenv("control");
  const bool has_announced = announced != nullptr && ControlPath(announced) != announced;
  if (given.empty()) given = has_announced ? announced : kAutomatic;
  const std::string path = given == kAutomatic ? AutomaticControl() : ControlPath(given);
  if (path.empty())
    throw CLI::ValidationError(
        "--control", "XDG_RUNTIME_DIR is not set; use the control=unix:PATH of the ready line");
  return path;
}

// An option that can be repeated, each time with one value.
void AddRepeatable(CLI::App& app, const std::string& name, std::vector<std::string>& values,
                   const std::string& type, const std::string& description) {
  app.add_option(name, values, description)
      ->type_name(type)
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// A daemon on a Unix socket.
void AddSocket(CLI::App& app, const std::string& name, std::string& path,
               const std::string& daemon) {
  const CLI::Validator url(
      [](const std::string& given) {
        const bool is_unix = ControlPath(given) != given && ControlPath(given) != "";
        return is_unix ? "" : "'" + given + "' must be unix:PATH";
      },
      "");
  app.add_option_function<std::string>(
         name, [&path](const std::string& given) { path = ControlPath(given); },
         "Unix socket of the " + daemon + " daemon, instead of a port")
      ->check(url)
      ->type_name("unix:PATH");
}

void DescribePorts(CLI::App& app, Options& options) {
  AddNumber(app, "--network-manager-port", options.network_manager_port, kLastPort,
            "Port of the network-manager daemon, 0 for a free one");
  AddNumber(app, "--dapi-port", options.dapi_port, kLastPort,
            "Port of the Dante API daemon, 0 for a free one");
  AddSocket(app, "--network-manager", options.network_manager_socket, "network-manager");
  AddSocket(app, "--dapi", options.dapi_socket, "Dante API");
  const CLI::Validator octal(
      [](const std::string& mode) {
        const bool is_octal = !mode.empty() && mode.size() <= 4 &&
                              mode.find_first_not_of("01234567") == std::string::npos &&
                              std::stoul(mode, nullptr, 8) <= 0777;
        return is_octal ? "" : "'" + mode + "' must be an octal mode from 0 to 777";
      },
      "");
  app.add_option_function<std::string>(
         "--socket-mode",
         [&options](const std::string& mode) {
           options.socket_mode = static_cast<unsigned>(std::stoul(mode, nullptr, 8));
         },
         "Permissions of the daemons' Unix sockets, octal; default 600")
      ->check(octal)
      ->type_name("MODE");
  AddNumber(app, "--tx-channels", options.tx_channels, kMostChannels,
            "Number of transmit channels");
  AddNumber(app, "--rx-channels", options.rx_channels, kMostChannels, "Number of receive channels");
}

void DescribeState(CLI::App& app, ProgramOptions& options, std::vector<std::string>& faults) {
  AddRepeatable(app, "--state", options.states, "FILE",
                "Start with the state in this JSON file, which may contain comments; once for all "
                "devices, or once for each");
  AddRepeatable(app, "--save", options.saves, "FILE",
                "Write the state to this regular file at exit; once for each device");
  AddRepeatable(app, "--fault", faults, "METHOD:FAULT",
                "Inject a fault on every device; can be repeated");
  AddRepeatable(app, "--scenario", options.scenarios, "FILE",
                "Carry out the steps in this JSON file; can be repeated");
  terminal::AddInteger(
      app, "--devices", options.devices,
      "Number of devices, each with its own ports, names, addresses and ready line, 1 to " +
          std::to_string(kMostDevices) + "; default 1",
      1, kMostDevices)
      ->type_name("N");
  app.add_option("--control", options.control,
                 "Listen for ctl on this Unix socket, which only its owner can connect to; auto "
                 "for one in XDG_RUNTIME_DIR, or in a new private folder")
      ->type_name("PATH");
}

void DescribeUse(CLI::App& app, ProgramOptions& options) {
  AddRepeatable(app, "--name", options.names, "NAME",
                "Dante device name at the start; once for each device");
  app.add_option("--address-book", options.address_book,
                 "When ready, add each device to this TOML file of the tool, by its Dante device "
                 "name, or change its URLs there; - to print the entries after the ready lines")
      ->type_name("FILE");
}

void DescribeExport(CLI::App& app, ProgramOptions& options) {
  terminal::AddInteger(app, "--pid", options.pid, "End when this process ends", 1)
      ->type_name("PID");
  app.add_option_function<std::string>(
         "--export",
         [&options](const std::string& shell) {
           options.export_to = shell == "fish" ? Shell::kFish : Shell::kPosix;
         },
         "Run in the background, and print what the calling shell is to evaluate to use the "
         "first device: sh, the default, for bash, zsh and other shells of POSIX, or fish. The "
         "simulator ends with the shell, or with the process of --pid")
      ->expected(0, 1)
      ->default_str("sh")
      ->check(terminal::OneOf({"sh", "bash", "zsh", "fish"}))
      ->type_name("[SHELL]");
}

void CheckSockets(const Options& device, std::size_t devices) {
  for (const bool is_dapi : {false, true}) {
    const std::string name = is_dapi ? "--dapi" : "--network-manager";
    const std::string& path = is_dapi ? device.dapi_socket : device.network_manager_socket;
    if (path.empty()) continue;
    if ((is_dapi ? device.dapi_port : device.network_manager_port) != 0)
      throw CLI::ValidationError(name, "cannot be combined with " + name + "-port");
    if (devices > 1)
      throw CLI::ValidationError(name, "several devices listen on free ports only; leave it out");
  }
  if (!device.dapi_socket.empty() && device.dapi_socket == device.network_manager_socket)
    throw CLI::ValidationError("--dapi", "the same socket as --network-manager; choose another");
}

void Exclude(const CLI::App& app, const std::string& command,
             const std::vector<std::string>& names) {
  for (const std::string& name : names)
    if (app.get_option(name)->count() != 0)
      throw CLI::ValidationError(name, "cannot be combined with " + command);
}

void CheckCommands(const CLI::App& app, const ProgramOptions& options) {
  if (app.got_subcommand("run") && options.command.empty()) throw CLI::RequiredError("COMMAND");
  // The end of the command is that of the simulator.
  if (!options.command.empty()) Exclude(app, "a command", {"--export", "--pid"});
  for (const char* const name : {"record", "replay"})
    if (app.got_subcommand(name))
      Exclude(app, name, {"--state", "--save", "--tx-channels", "--rx-channels", "--devices"});
}

void CheckTogether(const ProgramOptions& options) {
  const Options& device = options.device;
  const auto devices = static_cast<std::size_t>(options.devices);
  if (device.dapi_port != 0 && device.dapi_port == device.network_manager_port)
    throw CLI::ValidationError("--dapi-port",
                               "the same port as --network-manager-port; choose another");
  if (devices > 1 && (device.dapi_port != 0 || device.network_manager_port != 0))
    throw CLI::ValidationError("--devices",
                               "several devices listen on free ports only; leave out the ports");
  CheckSockets(device, devices);
  if (!options.names.empty() && options.names.size() != devices)
    throw CLI::ValidationError("--name", "must be given once for each device");
  if (std::set<std::string>(options.names.begin(), options.names.end()).size() !=
      options.names.size())
    throw CLI::ValidationError("--name", "two devices cannot have one name");
  if (options.states.size() > 1 && options.states.size() != devices)
    throw CLI::ValidationError("--state", "must be given once for all devices, or once for each");
  if (!options.saves.empty() && options.saves.size() != devices)
    throw CLI::ValidationError("--save", "must be given once for each device");
  if (std::set<std::string>(options.saves.begin(), options.saves.end()).size() !=
      options.saves.size())
    throw CLI::ValidationError("--save", "two devices cannot be saved to one file");
}

// Options before ctl would be those of a simulator to start.
void CheckCtl(const CLI::App& app) {
  for (const CLI::Option* option : app.get_options())
    if (option->count() != 0)
      throw CLI::ValidationError(option->get_name(),
                                 "cannot be combined with ctl, whose options follow it");
}

void AddCommand(CLI::App& ctl, ProgramOptions& options, const std::string& name,
                const std::string& description) {
  ctl.add_subcommand(name, description)->fallthrough()->callback([&options, name] {
    options.requests.push_back({name, ""});
  });
}

struct Argument {
  const char* name;
  const char* description;
};

// A command with one or more arguments; it is run for each.
void AddCommand(CLI::App& ctl, ProgramOptions& options, const std::string& name,
                const std::string& description, const Argument& argument) {
  CLI::App* const command = ctl.add_subcommand(name, description)->fallthrough();
  const auto values = std::make_shared<std::vector<std::string>>();
  command->add_option(argument.name, *values, argument.description)->required();
  command->callback([&options, name, values] {
    for (const std::string& value : *values) options.requests.push_back({name, value});
  });
}

// `words` are those behind the command (see CutRest).
void AddSet(CLI::App& ctl, ProgramOptions& options, const std::vector<std::string>& words) {
  CLI::App* const set = ctl.add_subcommand(
      "set", "Change members of the state, all or none; the options of ctl come before it");
  set->fallthrough();
  set->add_option("PATH_VALUE",
                  "A member of the state file, such as network.interfaces[lan0].speed, and its new "
                  "value: a string, a name, or JSON")
      ->expected(0, 2);
  set->callback([&options, &words] {
    if (words.empty()) throw CLI::RequiredError("PATH VALUE");
    if (words.size() % 2 != 0)
      throw CLI::ValidationError("set", "no VALUE given for " + words.back());
    Json changes = Json::object();
    for (std::size_t i = 0; i < words.size(); i += 2) changes[words[i]] = words[i + 1];
    options.requests.push_back({"set", changes});
  });
}

void AddLoad(CLI::App& ctl, ProgramOptions& options) {
  CLI::App* const load =
      ctl.add_subcommand("load", "Take over a state file; members that it lacks keep their values");
  load->fallthrough();
  load->add_option("FILE", options.loaded, "A state file, as for --state")->required();
  load->callback([&options] { options.requests.push_back({"load", ""}); });
}

void AddWait(CLI::App& ctl, ProgramOptions& options) {
  CLI::App* const wait = ctl.add_subcommand(
      "wait", "Wait until calls of a method have been received, since the start or forget");
  wait->fallthrough();
  const auto request = std::make_shared<CtlRequest>();
  const auto method = std::make_shared<std::string>();
  request->command = "wait";
  wait->add_option("METHOD", *method, "As for --fault, for example SetName or DAPI.*")->required();
  terminal::AddInteger(*wait, "--count", request->count, "Number of calls; default 1",
                       std::size_t{1}, std::size_t{10000})
      ->type_name("N");
  wait->add_option("--timeout", request->timeout,
                   "Seconds after which the exit status is 3; default 20")
      ->check(terminal::Seconds(0.001))
      ->type_name("S");
  wait->callback([&options, request, method] {
    request->argument = *method;
    options.requests.push_back(*request);
  });
}

void DescribeCtl(CLI::App& app, ProgramOptions& options, const std::vector<std::string>& rest,
                 std::string& control, int& device) {
  CLI::App* const ctl = app.add_subcommand("ctl", "Query or change a running simulator");
  ctl->require_subcommand(1);
  ctl->add_option("--control", control,
                  "The simulator's control socket; default: the variable control, else auto")
      ->type_name("PATH");
  terminal::AddInteger(*ctl, "--device", device,
                       "Number of the device, in the order of the ready lines; default 1", 1,
                       kMostDevices)
      ->type_name("N");
  const Argument daemon = {"DAEMON", "DAPI or NetworkManager"};
  AddCommand(*ctl, options, "state", "Print the state as --save writes it");
  AddCommand(*ctl, options, "calls",
             "Print the calls received with their requests, one JSON object per line");
  AddCommand(*ctl, options, "devices",
             "Print the devices, their transmit channels and who receives these, one JSON object "
             "per line");
  AddCommand(*ctl, options, "forget", "Forget the calls received");
  AddWait(*ctl, options);
  AddSet(*ctl, options, rest);
  AddLoad(*ctl, options);
  AddCommand(*ctl, options, "faults", "Print the faults, one per line");
  AddCommand(*ctl, options, "fault", "Add faults", {"FAULT", "METHOD:FAULT, as for --fault"});
  AddCommand(*ctl, options, "clear", "Clear faults",
             {"METHOD", "The METHOD as given with the fault; all for all faults"});
  AddCommand(*ctl, options, "stop", "Stop a daemon", daemon);
  AddCommand(*ctl, options, "start", "Start a stopped daemon", daemon);
  AddCommand(*ctl, options, "restart", "Stop and start a daemon", daemon);
  AddCommand(*ctl, options, "drop", "Close the connections to a daemon", daemon);
}

void DescribeRun(CLI::App& app, ProgramOptions& options) {
  CLI::App* const run = app.add_subcommand(
      "run", "Simulate a device while a command runs, with its endpoints in the environment");
  run->fallthrough();
  run->add_option("COMMAND", options.command,
                  "The command and its arguments, after --; it finds the first device");
}

void DescribeRecord(CLI::App& app, ProgramOptions& options) {
  CLI::App* const record = app.add_subcommand(
      "record", "Pass all calls on to real daemons, and record them and their answers");
  record->fallthrough();
  record->add_option("--log", options.log, "The recording, which is replaced")
      ->required()
      ->type_name("FILE");
  options.network_manager_url = client::kNetworkManagerUrl.Value();
  options.dapi_url = client::kDapiUrl.Value();
  const auto add_url = [&](const char* name, std::string& url, const client::Setting& setting) {
    record
        ->add_option(name, url,
                     std::string("The real ") + setting.role + " daemon; default: the variable " +
                         setting.variable + ", else " + setting.fallback)
        ->type_name("URL");
  };
  add_url("--network-manager", options.network_manager_url, client::kNetworkManagerUrl);
  add_url("--dapi", options.dapi_url, client::kDapiUrl);
  record->add_flag("--redact", options.redacts,
                   "Replace names, addresses and wireless keys in the recording");
  record->add_option("COMMAND", options.command, "Record while this command runs, after --");
}

void DescribeReplay(CLI::App& app, ProgramOptions& options) {
  CLI::App* const replay = app.add_subcommand(
      "replay", "Answer calls as a recording has it; exit status 1 if others came");
  replay->fallthrough();
  replay->add_option("FILE", options.recording, "The recording")->required();
  replay->add_option("COMMAND", options.command, "Replay while this command runs, after --");
}

bool IsHelp(const std::string& word) { return word == "-h" || word == "--help"; }

// Cuts off what follows -- of run, record and replay, or set of ctl: CLI11 would look for options,
// commands and lists in it. Returns the number of words that are left.
int CutRest(int argc, char** argv, std::vector<std::string>& rest) {
  char** const end = argv + argc;
  char** const name = std::find_if(argv, end, [](const std::string& word) {
    return word == "run" || word == "record" || word == "replay" || word == "ctl";
  });
  const bool is_ctl = name != end && *name == std::string("ctl");
  char** const mark = std::find(name, end, std::string(is_ctl ? "set" : "--"));
  if (mark == end || (is_ctl && mark + 1 != end && IsHelp(mark[1]))) return argc;
  rest.assign(mark + 1, end);
  return static_cast<int>(mark - argv) + (is_ctl ? 1 : 0);
}

std::vector<Fault> ParseFaults(const std::vector<std::string>& texts) {
  std::vector<Fault> faults;
  try {
    for (const std::string& text : texts) faults.push_back(ParseFault(text));
  } catch (const BadFault& bad) {
    throw CLI::ValidationError("--fault", bad.what());
  }
  return faults;
}

// Throws CLI::ParseError.
ProgramOptions Parse(CLI::App& app, int argc, char** argv) {
  ProgramOptions options;
  std::vector<std::string> faults;
  std::string ctl_control;
  int ctl_device = 1;
  app.formatter(std::make_shared<terminal::Help>(MoreHelp));
  app.description(
      "Simulate a device: both daemons, on loopback.\n"
      "When both daemons listen, one line on standard output gives their endpoints:\n"
      "  ready network_manager_url=127.0.0.1:PORT grpc_dapi_url=127.0.0.1:PORT\n"
      "The simulator runs until SIGTERM, SIGINT or SIGHUP.");
  app.set_version_flag("--version", std::string(kProgramName) + " " + NETWORKGRPC_VERSION,
                       "Print the version and exit");
  app.require_subcommand(0, 1);
  DescribePorts(app, options.device);
  DescribeState(app, options, faults);
  DescribeUse(app, options);
  DescribeExport(app, options);
  DescribeRun(app, options);
  DescribeRecord(app, options);
  DescribeReplay(app, options);
  std::vector<std::string> rest;
  DescribeCtl(app, options, rest, ctl_control, ctl_device);
  app.parse(CutRest(argc, argv, rest), argv);
  if (!app.got_subcommand("ctl"))
    options.command.insert(options.command.end(), rest.begin(), rest.end());
  CheckCommands(app, options);
  app.got_subcommand("ctl") ? CheckCtl(app) : CheckTogether(options);
  options.faults = ParseFaults(faults);
  if (options.requests.empty()) {
    ChooseControlToListen(options);
  } else {
    options.control = ControlToAsk(ctl_control);
  }
  for (CtlRequest& request : options.requests) request.device = ctl_device;
  return options;
}

}  // namespace

std::optional<ProgramOptions> ParseProgramOptions(int argc, char** argv, int& status) {
  CLI::App app("", kProgramName);
  try {
    return Parse(app, argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
      status = app.exit(error);  // prints the help or the version
      return std::nullopt;
    }
    std::cerr << kProgramName << ": " << terminal::Printable(terminal::Explain(app, error))
              << "; see '" << kProgramName << " --help'\n";
    status = kBadOptions;
    return std::nullopt;
  }
}

}  // namespace simulator
