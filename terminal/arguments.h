// Checks of what is typed on a command line, with one form of message.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace terminal {

/// Whether the text is a decimal integer in this range, and nothing else.
bool IsInteger(const std::string& text, std::int64_t least, std::uint64_t most);

CLI::Validator Integer(std::int64_t least, std::uint64_t most);

/// An argument or option that accepts an integer of this range, by default of its type,
/// in decimal: "010" is ten.
template <class Number>
CLI::Option* AddInteger(CLI::App& command, const std::string& name, Number& value,
                        const std::string& description,
                        Number least = std::numeric_limits<Number>::min(),
                        Number most = std::numeric_limits<Number>::max()) {
  const auto store = [&value](const std::string& text) {
    if constexpr (std::is_signed_v<Number>)
      value = static_cast<Number>(std::stoll(text));
    else
      value = static_cast<Number>(std::stoull(text));
  };
  return command.add_option_function<std::string>(name, store, description)
      ->check(Integer(static_cast<std::int64_t>(least), static_cast<std::uint64_t>(most)));
}

/// A number of seconds, at most a day.
CLI::Validator Seconds(double least);

CLI::Validator OneOf(const std::vector<std::string>& words);

/// Whether help shows the command: one in a group without a name is hidden.
bool IsShown(const CLI::App* command);

/// The command of this name right below `parent`; null if there is none.
const CLI::App* FindCommand(const CLI::App& parent, const std::string& name);

/// The commands right below `parent` that `word` can mean: the one of this name, or those
/// shown whose names begin with it. Only the former if `parent` has arguments: the word
/// could be one.
std::vector<const CLI::App*> Meant(const CLI::App& parent, const std::string& word);

/// Whether a value follows the option, which is no flag.
bool HasValue(const CLI::Option& option);

/// The option of this name of the command or of one above; null if there is none.
const CLI::Option* FindOption(const CLI::App& command, const std::string& name);

/// The words of a command line with commands written out. The arguments of a command that
/// has some stand at the end, behind "--": the parser would take one that equals the name
/// of a command for that command. Throws CLI::ParseError if a word can mean several commands.
std::vector<std::string> Arranged(const CLI::App& program, const std::vector<std::string>& words);

/// What is wrong with `word`, which `command` does not know, and what was perhaps meant.
std::string Unknown(const CLI::App& command, const std::string& word);

/// Throws CLI::ParseError if a command above the one that was parsed has received an argument:
/// the parser gives it those that are too many.
void CheckArguments(const CLI::App& program);

/// What is wrong with a command line that `program` cannot parse.
std::string Explain(const CLI::App& program, const CLI::ParseError& error);

}  // namespace terminal
