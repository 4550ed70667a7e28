#include "terminal/arguments.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <sstream>
#include <utility>

#include "terminal/joined.h"

namespace terminal {
namespace {

// What is checked, and how the message goes on: "'abc' must be ...".
CLI::Validator Must(const std::string& be, const std::function<bool(const std::string&)>& fits) {
  return {[be, fits](const std::string& text) {
            return fits(text) ? std::string() : "'" + text + "' must be " + be;
          },
          ""};
}

template <class Number>
bool Fits(const std::string& text, Number least, Number most) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stopped == end && number >= least && number <= most;
}

// The number of characters to insert, remove or replace.
std::size_t Distance(const std::string& from, const std::string& to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i] == to[j] ? 0U : 1U);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

std::vector<std::string> CommandsAndOptions(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* it : command.get_subcommands(nullptr)) names.push_back(it->get_name());
  for (const CLI::App* of : {&command, command.get_parent()})
    for (const CLI::Option* it :
         of != nullptr ? of->get_options() : std::vector<const CLI::Option*>())
      for (const std::string& name : it->get_lnames()) names.push_back("--" + name);
  return names;
}

bool HasArguments(const CLI::App& command) {
  const auto options = command.get_options();
  return std::any_of(options.begin(), options.end(),
                     [](const CLI::Option* it) { return it->get_positional(); });
}

[[noreturn]] void ThrowAmbiguous(const std::string& word,
                                 const std::vector<const CLI::App*>& meant) {
  std::string names;
  for (const CLI::App* it : meant)
    names += (names.empty() ? "" : it == meant.back() ? " or " : ", ") + it->get_name();
  throw CLI::ParseError("'" + word + "' is ambiguous: it can mean " + names,
                        CLI::ExitCodes::ExtrasError);
}

// The option or argument that a message of the parser begins with.
std::string Culprit(const std::string& message) {
  return message.substr(0, message.find_first_of(": "));
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

}  // namespace

bool IsInteger(const std::string& text, std::int64_t least, std::uint64_t most) {
  if (!text.empty() && text.front() == '-')
    return Fits<std::int64_t>(text, least, std::numeric_limits<std::int64_t>::max());
  return Fits<std::uint64_t>(text, static_cast<std::uint64_t>(std::max<std::int64_t>(least, 0)),
                             most);
}

CLI::Validator Integer(std::int64_t least, std::uint64_t most) {
  return Must("an integer from " + std::to_string(least) + " to " + std::to_string(most),
              [least, most](const std::string& text) { return IsInteger(text, least, most); });
}

CLI::Validator Seconds(double least) {
  constexpr double kMost = 86400;  // a day
  std::ostringstream range;
  range << "a number of seconds from " << least << " to " << kMost;
  return Must(range.str(), [least](const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == '\0' && value >= least && value <= kMost;
  });
}

CLI::Validator OneOf(const std::vector<std::string>& words) {
  return Must(Joined(words, " or "), [words](const std::string& text) {
    return std::find(words.begin(), words.end(), text) != words.end();
  });
}

const CLI::App* FindCommand(const CLI::App& parent, const std::string& name) {
  for (const CLI::App* it : parent.get_subcommands(nullptr))
    if (it->get_name() == name) return it;
  return nullptr;
}

bool IsShown(const CLI::App* command) { return !command->get_group().empty(); }

std::vector<const CLI::App*> Meant(const CLI::App& parent, const std::string& word) {
  if (const CLI::App* exact = FindCommand(parent, word)) return {exact};
  if (word.empty() || HasArguments(parent)) return {};
  return parent.get_subcommands([&word](const CLI::App* it) {
    return IsShown(it) && it->get_name().compare(0, word.size(), word) == 0;
  });
}

bool HasValue(const CLI::Option& option) { return option.get_items_expected_max() != 0; }

const CLI::Option* FindOption(const CLI::App& command, const std::string& name) {
  for (const CLI::App* it = &command; it != nullptr; it = it->get_parent())
    if (const CLI::Option* found = it->get_option_no_throw(name)) return found;
  return nullptr;
}

std::vector<std::string> Arranged(const CLI::App& program, const std::vector<std::string>& words) {
  const CLI::App* command = &program;
  std::vector<std::string> before;
  std::vector<std::string> arguments;
  for (auto word = words.begin(); word != words.end(); ++word) {
    if (*word == "--") {
      arguments.insert(arguments.end(), word + (HasArguments(*command) ? 1 : 0), words.end());
      break;
    }
    if (word->size() > 1 && word->front() == '-') {
      before.push_back(*word);
      const CLI::Option* option = FindOption(*command, *word);
      if (option != nullptr && HasValue(*option) && word + 1 != words.end())
        before.push_back(*++word);
      continue;
    }
    const auto meant = arguments.empty() ? Meant(*command, *word) : std::vector<const CLI::App*>();
    if (meant.size() > 1) ThrowAmbiguous(*word, meant);
    if (meant.empty()) {
      arguments.push_back(*word);
      continue;
    }
    command = meant.front();
    before.push_back(command->get_name());
  }
  if (HasArguments(*command) && !arguments.empty()) before.emplace_back("--");
  before.insert(before.end(), arguments.begin(), arguments.end());
  return before;
}

std::string Unknown(const CLI::App& command, const std::string& word) {
  std::size_t least = std::max<std::size_t>(word.size() / 3, 1) + 1;  // else no misspelling
  std::string meant;
  for (const std::string& name : CommandsAndOptions(command)) {
    const std::size_t distance = Distance(word, name);
    if (distance >= least) continue;
    least = distance;
    meant = name;
  }
  return "unexpected argument '" + word + "'" +
         (meant.empty() ? "" : "; did you mean '" + meant + "'?");
}

void CheckArguments(const CLI::App& program) {
  const CLI::App* command = &program;
  for (; !command->get_subcommands().empty(); command = command->get_subcommands().front())
    for (const CLI::Option* it : command->get_options())
      if (it->get_positional() && it->count() != 0)
        throw CLI::ParseError(Unknown(*command->get_subcommands().front(), it->results().front()),
                              CLI::ExitCodes::ExtrasError);
}

std::string Explain(const CLI::App& program, const CLI::ParseError& error) {
  const CLI::App* command = &program;
  while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
  for (const std::string& unknown : program.remaining(true))
    if (unknown != "--") return Unknown(*command, unknown);
  const std::string message = error.what();
  const std::string& kind = error.get_name();
  if (kind == "RequiredError" && command->get_require_subcommand_min() != 0)
    return "a command is required";
  if (message.find("flag override") != std::string::npos)
    return "--" + Culprit(message) + " does not have a value";
  if (kind == "ArgumentMismatch")
    return message.find("missing") != std::string::npos
               ? Culprit(message) + " requires a value"
               : Culprit(message) + " can be given only once";
  if (kind == "ExcludesError") return Replaced(message, " excludes ", " cannot be combined with ");
  return message;
}

}  // namespace terminal
