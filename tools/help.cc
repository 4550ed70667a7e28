#include "tools/help.h"

#include "tools/exit_status.h"

namespace tool {
namespace {

constexpr std::size_t kDescriptionColumn = 30;

std::string Entry(const std::string& what, const std::string& description, std::size_t indent = 2) {
  std::string line = std::string(indent, ' ') + what;
  if (line.size() + 2 > kDescriptionColumn)
    line += "\n" + std::string(kDescriptionColumn, ' ');
  else
    line += std::string(kDescriptionColumn - line.size(), ' ');
  return line + description + "\n";
}

std::vector<const CLI::App*> Commands(const CLI::App& command) {
  return command.get_subcommands([](const CLI::App* it) { return !it->get_name().empty(); });
}

// The help options are told once, with those of the whole tool.
std::string Options(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options())
    if (!option->get_positional() &&
        (command.get_parent() == nullptr ||
         (option != command.get_help_ptr() && option != command.get_help_all_ptr())))
      text += Entry(OptionText(*option), option->get_description());
  return text;
}

std::string Arguments(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options())
    if (option->get_positional()) text += Entry(option->get_name(true), option->get_description());
  return text;
}

std::string Section(const std::string& heading, const std::string& text) {
  return text.empty() ? "" : "\n" + heading + ":\n" + text;
}

// All verbs of a noun with what they take: the body of the noun's manual page.
std::string EveryVerb(const CLI::App& command) {
  std::string text;
  for (const CLI::App* verb : Commands(command)) {
    text += "\nOptions of '" + VerbText(*verb) + "':\n";
    text += Entry(VerbText(*verb), verb->get_description());
    text += Arguments(*verb) + Options(*verb);
  }
  return text;
}

constexpr const char* kExitStatus =
    "\nExit status:\n"
    "  0    done\n"
    "  1    failed\n"
    "  2    the command line is wrong, or --yes is missing\n"
    "  3    the time limit passed\n"
    "  4    refused by the daemon\n"
    "  8    the daemon cannot be reached\n"
    "  10   there is no such interface, channel or mode\n";

constexpr const char* kEnvironment =
    "\nEnvironment:\n"
    "  network_manager_url          where the network-manager daemon is, localhost:50007\n"
    "  grpc_dapi_url                where the Dante API daemon is, localhost:50008\n"
    "  dante_primary_interface_env  name of the Dante primary interface, lan0\n"
    "  dante_secondary_interface_env\n"
    "                               name of the Dante secondary interface, lan2\n"
    "  control_interface_env        name of the control interface, lan1\n"
    "  NO_COLOR                     no colour, also on a terminal\n";

}  // namespace

std::string OptionText(const CLI::Option& option) {
  std::string text;
  for (const std::string& name : option.get_snames()) text += "-" + name + ", ";
  for (const std::string& name : option.get_lnames()) text += "--" + name;
  if (option.get_type_size() != 0) text += " " + option.get_type_name();
  return text;
}

std::string VerbText(const CLI::App& verb) {
  std::string text = verb.get_name();
  for (const CLI::Option* option : verb.get_options()) {
    if (!option->get_positional()) continue;
    text +=
        option->get_required() ? " " + option->get_name(true) : " [" + option->get_name(true) + "]";
  }
  return text;
}

std::string Help::make_help(const CLI::App* command, std::string name,
                            CLI::AppFormatMode mode) const {
  const bool everything = mode == CLI::AppFormatMode::All;
  const bool is_root = command->get_parent() == nullptr;
  const std::string above = name.substr(0, name.size() - command->get_name().size());
  std::string text = "Usage: " + above + VerbText(*command);
  text += Commands(*command).empty() ? " [OPTION]...\n" : " COMMAND [OPTION]...\n";
  text += command->get_description() + "\n";

  std::string commands;
  for (const CLI::App* verb : Commands(*command))
    commands += Entry(VerbText(*verb), verb->get_description());
  text += Section("Commands", commands);
  text += Section("Arguments", Arguments(*command));
  if (everything && !is_root) text += EveryVerb(*command);
  text += Section("Options", Options(*command));
  const CLI::App* root = command;
  while (root->get_parent() != nullptr) root = root->get_parent();
  if (!is_root) text += Section("Options of every command", Options(*root));
  if (is_root || everything) text += kExitStatus;
  if (is_root) text += kEnvironment;

  std::string examples;
  for (const std::string& example : examples_of(*command)) examples += "  " + example + "\n";
  return text + Section("Examples", examples);
}

}  // namespace tool
