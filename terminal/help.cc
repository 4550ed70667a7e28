#include "terminal/help.h"

#include <algorithm>
#include <sstream>

#include "terminal/arguments.h"
#include "terminal/printable.h"

namespace terminal {
namespace {

constexpr std::size_t kLastColumn = 80;
constexpr std::size_t kIndent = 2;
constexpr std::size_t kGap = 2;
constexpr std::size_t kDescriptionColumn = 30;

using Commands = std::vector<const CLI::App*>;

std::size_t Columns(const std::string& text) { return static_cast<std::size_t>(Width(text)); }

std::string Blanks(std::size_t count) { return std::string().append(count, ' '); }

Commands CommandsOf(const CLI::App& command) { return command.get_subcommands(IsShown); }

std::string WrappedParagraph(const std::string& text, std::size_t indent) {
  std::string lines;
  std::string line;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (!line.empty() && indent + Columns(line) + 1 + Columns(word) > kLastColumn) {
      lines += Blanks(indent) + line + "\n";
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
  }
  return lines + (line.empty() ? "" : Blanks(indent) + line) + "\n";
}

// "-y, --yes" or "--ip ADDRESS".
std::string OptionText(const CLI::Option& option) {
  std::string text;
  for (const std::string& name : option.get_snames()) text += "-" + name + ", ";
  for (const std::string& name : option.get_lnames()) text += "--" + name;
  if (option.get_type_size() != 0) text += " " + option.get_type_name();
  return text;
}

// CLI11 2.4 rejects names with blanks: "PATH_VALUE" stands for two arguments.
std::string ArgumentName(const CLI::Option& option) {
  std::string name = option.get_name(true);
  std::replace(name.begin(), name.end(), '_', ' ');
  return name;
}

// "set ID" or "interface [COMMAND]", as it is typed.
std::string CommandText(const CLI::App& command) {
  std::string text = command.get_name();
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional()) continue;
    const std::string name = ArgumentName(*option);
    text += option->get_required() ? " " + name : " [" + name + "]";
    if (option->get_items_expected_max() > 1) text += "...";
  }
  if (CommandsOf(command).empty()) return text;
  return text + (command.get_require_subcommand_min() != 0 ? " COMMAND" : " [COMMAND]");
}

std::string CommandEntries(const CLI::App& command) {
  std::string text;
  for (const CLI::App* it : CommandsOf(command))
    text += Entry(CommandText(*it), it->get_description());
  return text;
}

std::string ArgumentEntries(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options())
    if (option->get_positional()) text += Entry(ArgumentName(*option), option->get_description());
  return text;
}

bool IsProgram(const CLI::App& command) { return command.get_parent() == nullptr; }

// The help options are described once, among those of the program.
std::string OptionEntries(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options())
    if (!option->get_positional() && (IsProgram(command) || (option != command.get_help_ptr() &&
                                                             option != command.get_help_all_ptr())))
      text += Entry(OptionText(*option), option->get_description());
  return text;
}

std::string Quoted(const CLI::App& command) { return "'" + command.get_name() + "'"; }

std::string DetailsOfCommands(const CLI::App& command) {
  std::string text;
  for (const CLI::App* it : CommandsOf(command))
    text += Section("Commands of " + Quoted(*it), CommandEntries(*it)) +
            Section("Arguments and options of " + Quoted(*it),
                    ArgumentEntries(*it) + OptionEntries(*it));
  return text;
}

}  // namespace

std::string Wrapped(const std::string& text, std::size_t indent) {
  std::string lines;
  std::istringstream paragraphs(text);
  for (std::string paragraph; std::getline(paragraphs, paragraph);) {
    const std::size_t blanks = std::min(paragraph.find_first_not_of(' '), paragraph.size());
    lines += WrappedParagraph(paragraph, indent + blanks);
  }
  return lines;
}

std::string Entry(const std::string& term, const std::string& description) {
  const std::string lines = Wrapped(description, kDescriptionColumn);
  const std::string start = Blanks(kIndent) + term;
  const std::size_t width = Columns(start);
  if (lines.empty() || width + kGap > kDescriptionColumn) return start + "\n" + lines;
  return start + lines.substr(width);
}

std::string Section(const std::string& heading, const std::string& body) {
  return body.empty() ? "" : "\n" + heading + ":\n" + body;
}

std::string Examples(const std::vector<std::string>& commands) {
  std::string text;
  for (const std::string& command : commands) text += Blanks(kIndent) + "$ " + command + "\n";
  return Section("Examples", text);
}

std::string Help::make_help(const CLI::App* command, std::string name,
                            CLI::AppFormatMode mode) const {
  const bool all = mode == CLI::AppFormatMode::All;
  const std::string above = name.substr(0, name.size() - command->get_name().size());
  std::string text = "Usage: " + above + CommandText(*command) + " [OPTION]...\n" +
                     Wrapped(command->get_description(), 0);
  text += Section("Commands", CommandEntries(*command));
  text += Section("Arguments", ArgumentEntries(*command));
  text += Section("Options", OptionEntries(*command));
  const bool has_all = command->get_help_all_ptr() != nullptr;
  if (IsProgram(*command) ? !has_all : all) text += DetailsOfCommands(*command);
  // The options that can also stand after this command.
  for (const CLI::App* it = command; it->get_fallthrough() && !IsProgram(*it);) {
    it = it->get_parent();
    text += Section(IsProgram(*it) ? "Options of every command" : "Options of " + Quoted(*it),
                    OptionEntries(*it));
  }
  return text + more_sections(*command, all);
}

}  // namespace terminal
