#include "simulator/program_options.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <set>

#include "simulator/help.h"

namespace simulator {
namespace {

constexpr int kBadOptions = 2;
constexpr int kLastPort = 65535;
constexpr int kMostChannels = 512;
constexpr int kMostDevices = 64;
constexpr const char* kAutomatic = "auto";

CLI::Option* AddNumber(CLI::App& app, const std::string& name, int& value, int largest,
                       const std::string& description) {
  return app
      .add_option(name, value,
                  description + ": 0 to " + std::to_string(largest) + ", " + std::to_string(value) +
                      " by default")
      ->check(CLI::Range(0, largest))
      ->option_text("N");
}

// Where --control auto leads to, empty when nowhere.
std::string ControlPath(const std::string& asked) {
  if (asked != kAutomatic) return asked;
  const char* const folder = std::getenv("XDG_RUNTIME_DIR");
  if (folder == nullptr || *folder == '\0')
    throw CLI::ValidationError("--control", "XDG_RUNTIME_DIR is not set, give a path");
  return std::string(folder) + '/' + kProgramName + "/control";
}

void DescribePorts(CLI::App& app, Options& options) {
  AddNumber(app, "--network-manager-port", options.network_manager_port, kLastPort,
            "Port of the network-manager daemon, 0 being a free one");
  AddNumber(app, "--dapi-port", options.dapi_port, kLastPort,
            "Port of the Dante API daemon, 0 being a free one");
  AddNumber(app, "--tx-channels", options.tx_channels, kMostChannels,
            "Number of transmit channels");
  AddNumber(app, "--rx-channels", options.rx_channels, kMostChannels, "Number of receive channels");
}

void DescribeState(CLI::App& app, ProgramOptions& options, std::vector<std::string>& faults) {
  app.add_option("--state", options.states,
                 "Begin with the state in this JSON file, in which comments are allowed; one for "
                 "all devices, or again for each")
      ->option_text("FILE")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.add_option("--save", options.saves,
                 "Write the state to this file in the end; again for each device")
      ->option_text("FILE")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.add_option("--fault", faults,
                 "Do this instead of answering, on every device; again for each fault")
      ->option_text("METHOD:FAULT")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.add_option("--devices", options.devices,
                 "Number of devices, each with ports, names, addresses and a ready line of its "
                 "own: 1 to " +
                     std::to_string(kMostDevices) + ", 1 by default")
      ->check(CLI::Range(1, kMostDevices))
      ->option_text("N");
  app.add_option("--control", options.control,
                 "Listen for ctl on this unix socket, which only its user can reach; auto is one "
                 "in XDG_RUNTIME_DIR")
      ->option_text("PATH");
}

void CheckTogether(const ProgramOptions& options) {
  const Options& device = options.device;
  const auto devices = static_cast<std::size_t>(options.devices);
  if (device.dapi_port != 0 && device.dapi_port == device.network_manager_port)
    throw CLI::ValidationError("--dapi-port",
                               "The same port as --network-manager-port, choose another");
  if (devices > 1 && (device.dapi_port != 0 || device.network_manager_port != 0))
    throw CLI::ValidationError("--devices", "Several devices have free ports only");
  if (options.states.size() > 1 && options.states.size() != devices)
    throw CLI::ValidationError("--state", "Give one for all devices, or one for each");
  if (!options.saves.empty() && options.saves.size() != devices)
    throw CLI::ValidationError("--save", "Give one for each device");
  if (std::set<std::string>(options.saves.begin(), options.saves.end()).size() !=
      options.saves.size())
    throw CLI::ValidationError("--save", "Two devices cannot be written to one file");
}

// Options in front of ctl would be for a simulator that starts.
void CheckCtl(const CLI::App& app, const ProgramOptions& options) {
  if (options.wishes.empty())
    throw CLI::ValidationError("ctl", "A command is missing, such as ctl state");
  for (const CLI::Option* option : app.get_options())
    if (option->count() != 0)
      throw CLI::ValidationError(option->get_name(),
                                 "Does not go with ctl, whose options stand behind it");
}

void AddCommand(CLI::App& ctl, ProgramOptions& options, const std::string& name,
                const std::string& description) {
  ctl.add_subcommand(name, description)->fallthrough()->callback([&options, name] {
    options.wishes.push_back({name, "", 1});
  });
}

// A command that takes words; it is run for each.
void AddCommand(CLI::App& ctl, ProgramOptions& options, const std::string& name,
                const std::string& description, const std::string& argument) {
  CLI::App* const command = ctl.add_subcommand(name, description)->fallthrough();
  const auto words = std::make_shared<std::vector<std::string>>();
  command->add_option(argument, *words)->option_text(" ")->required();
  command->callback([&options, name, words] {
    for (const std::string& word : *words) options.wishes.push_back({name, word, 1});
  });
}

void DescribeCtl(CLI::App& app, ProgramOptions& options, std::string& control, int& device) {
  CLI::App* const ctl = app.add_subcommand("ctl", "Ask or change a simulator that runs");
  // That there is one is checked in the end, when what stands instead is told.
  ctl->require_subcommand(0, 1);
  ctl->add_option("--control", control, "Its socket, as its --control says; auto by default")
      ->option_text("PATH");
  ctl->add_option("--device", device,
                  "Which of its devices, in the order of the ready lines: 1 by default")
      ->check(CLI::Range(1, kMostDevices))
      ->option_text("N");
  AddCommand(*ctl, options, "state", "Print the state as --save writes it");
  AddCommand(*ctl, options, "calls",
             "Print the calls received with their requests, one JSON object a line");
  AddCommand(*ctl, options, "forget", "Forget the calls received");
  AddCommand(*ctl, options, "faults", "Print the faults, one a line");
  AddCommand(*ctl, options, "fault", "Add faults, METHOD:FAULT each", "FAULT");
  AddCommand(*ctl, options, "clear",
             "Take back the faults told for exactly this METHOD; all takes back all", "METHOD");
  AddCommand(*ctl, options, "stop", "Stop a daemon: DAPI or NetworkManager", "DAEMON");
  AddCommand(*ctl, options, "start", "Start it again", "DAEMON");
  AddCommand(*ctl, options, "drop", "Cut the connections to it", "DAEMON");
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
  std::string ctl_control = kAutomatic;
  int ctl_device = 1;
  app.formatter(std::make_shared<Help>());
  app.description(
      "Simulates a device with its network-manager and Dante API daemons on loopback.\n"
      "When both serve, one line on standard output tells where:\n"
      "  ready network_manager_url=127.0.0.1:PORT grpc_dapi_url=127.0.0.1:PORT\n"
      "It serves until SIGTERM or SIGINT. With ctl, it asks or changes one that runs.");
  app.set_version_flag("--version", std::string(kProgramName) + " " + NETWORKGRPC_VERSION,
                       "Print the version and exit");
  DescribePorts(app, options.device);
  DescribeState(app, options, faults);
  DescribeCtl(app, options, ctl_control, ctl_device);
  app.parse(argc, argv);
  app.got_subcommand("ctl") ? CheckCtl(app, options) : CheckTogether(options);
  options.faults = ParseFaults(faults);
  if (!options.wishes.empty()) options.control = ctl_control;
  options.control = ControlPath(options.control);
  for (CtlRequest& wish : options.wishes) wish.device = ctl_device;
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
    std::cerr << kProgramName << ": " << error.what() << "; " << kProgramName
              << " --help tells the options\n";
    status = kBadOptions;
    return std::nullopt;
  }
}

}  // namespace simulator
