#include "simulator/help.h"

#include <algorithm>
#include <vector>

namespace simulator {
namespace {

constexpr std::size_t kDescriptionColumn = 26;
constexpr std::size_t kLastColumn = 80;

constexpr const char* kFaults =
    "\nFaults:\n"
    "  METHOD is such as GetName or DAPI.GetName; DAPI.* and NetworkManager.* stand for\n"
    "  all of a daemon, * for all. FAULT is one of the words below, or several with\n"
    "  commas between: what the call meets, and any of the last three. Of several\n"
    "  faults for one method the first told acts.\n"
    "\n"
    "  status=CODE             the call fails with this gRPC status\n"
    "  refuse                  the reply says that it was not done\n"
    "  empty                   the reply has no bytes\n"
    "  malformed               the reply cannot be parsed\n"
    "  oversize                the reply is over the client's limit of 4 MiB\n"
    "  freeze                  no reply, until the fault is taken back\n"
    "  drop                    the connection is cut\n"
    "  stop                    the daemon is stopped; for DAPI.* and NetworkManager.*\n"
    "  none                    as usual; for a delay\n"
    "  delay=MS                so many milliseconds later\n"
    "  times=N                 N times, then as usual\n"
    "  message=TEXT            for a status; up to the end, as it may have commas\n";

constexpr const char* kExitStatus =
    "\nExit status:\n"
    "  0                       ended by SIGTERM or SIGINT; ctl did what was asked\n"
    "  1                       a port or file cannot be used, a state is wrong, or ctl\n"
    "                          reached no simulator, or one that refused\n"
    "  2                       the command line is wrong\n";

constexpr const char* kEnvironment =
    "\nEnvironment:\n"
    "  XDG_RUNTIME_DIR         the folder of the control socket 'auto'\n"
    "  GRPC_VERBOSITY          what gRPC prints on standard error; NONE by default\n";

constexpr const char* kFiles =
    "\nFiles:\n"
    "  $XDG_RUNTIME_DIR/networkgrpc-simulator/control\n"
    "                          the control socket 'auto'\n"
    "  PREFIX/share/NetworkgRPC/simulator/state.json\n"
    "                          a state with every member, its meaning and default\n";

constexpr const char* kExamples =
    "\nExamples:\n"
    "  networkgrpc-simulator\n"
    "  networkgrpc-simulator --save hall.json\n"
    "  networkgrpc-simulator --state hall.json --save hall.json\n"
    "  networkgrpc-simulator --fault SetName:refuse,times=1 --fault 'DAPI.*:delay=250'\n"
    "  networkgrpc-simulator --devices 3\n"
    "  networkgrpc-simulator --control auto\n"
    "  networkgrpc-simulator ctl fault 'GetName:status=INTERNAL,times=2,message=restarting'\n"
    "  networkgrpc-simulator ctl calls\n"
    "  networkgrpc-simulator ctl stop DAPI\n"
    "  networkgrpc-simulator ctl start DAPI\n"
    "  networkgrpc-simulator ctl clear all\n";

// "  what    description", whose further lines stand below the first.
std::string Entry(const std::string& what, std::string description) {
  std::string text = "  " + what;
  const std::string below = '\n' + std::string(kDescriptionColumn, ' ');
  text += text.size() + 2 > kDescriptionColumn ? below
                                               : std::string(kDescriptionColumn - text.size(), ' ');
  constexpr std::size_t kWidth = kLastColumn - kDescriptionColumn;
  while (description.size() > kWidth) {
    const std::size_t blank = std::min(description.rfind(' ', kWidth), kWidth);
    text += description.substr(0, blank) + below;
    description.erase(0, blank + 1);
  }
  return text + description + '\n';
}

std::string OptionText(const CLI::Option& option) {
  std::string text;
  for (const std::string& name : option.get_snames()) text += '-' + name + ", ";
  for (const std::string& name : option.get_lnames()) text += "--" + name;
  if (option.get_items_expected_max() != 0) text += ' ' + option.get_option_text();
  return text;
}

std::string Options(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options())
    if (!option->get_positional()) text += Entry(OptionText(*option), option->get_description());
  return text;
}

// "stop DAEMON...", as it is typed.
std::string CommandText(const CLI::App& command) {
  std::string text = command.get_name();
  for (const CLI::Option* option : command.get_options())
    if (option->get_positional()) text += ' ' + option->get_name(true) + "...";
  return text;
}

std::string Commands(const CLI::App& command) {
  std::string text;
  for (const CLI::App* sub : command.get_subcommands({}))
    text += Entry(CommandText(*sub), sub->get_description());
  return text;
}

std::string HelpOfProgram(const CLI::App& program, const CLI::App& ctl) {
  const std::string& name = program.get_name();
  return "Usage: " + name + " [OPTION]...\n  or:  " + name + ' ' + ctl.get_name() +
         " [OPTION]... COMMAND [ARGUMENT]...\n" + program.get_description() + "\n\nOptions:\n" +
         Options(program) + "\nOptions of 'ctl':\n" + Options(ctl) + "\nCommands of 'ctl':\n" +
         Commands(ctl) + kFaults + kExitStatus + kEnvironment + kFiles + kExamples;
}

}  // namespace

std::string Help::make_help(const CLI::App* command, std::string name,
                            CLI::AppFormatMode /*mode*/) const {
  if (command->get_parent() == nullptr)
    return HelpOfProgram(*command, *command->get_subcommands({}).front());
  const std::string above = name.substr(0, name.size() - command->get_name().size());
  const std::string commands = Commands(*command);
  return "Usage: " + above + CommandText(*command) +
         (commands.empty() ? " [OPTION]...\n" : " [OPTION]... COMMAND [ARGUMENT]...\n") +
         command->get_description() + '\n' + (commands.empty() ? "" : "\nCommands:\n" + commands) +
         "\nOptions:\n" + Options(*command);
}

}  // namespace simulator
