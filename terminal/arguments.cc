#include "terminal/arguments.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <sstream>

namespace terminal {
namespace {

// What is checked, and how the message goes on: "'abc' must be ...".
CLI::Validator Must(const std::string& be, const std::function<bool(const std::string&)>& fits) {
  return {[be, fits](const std::string& text) {
            return fits(text) ? std::string() : "'" + text + "' must be " + be;
          },
          ""};
}

bool IsInteger(const std::string& text, std::int64_t least, std::uint64_t most) {
  char* end = nullptr;
  errno = 0;
  // The base is that of CLI11's own conversion, which follows.
  if (text.find('-') != std::string::npos) {
    if (std::strtoll(text.c_str(), &end, 0) < least) return false;
  } else {
    const std::uint64_t number = std::strtoull(text.c_str(), &end, 0);
    if (number > most || (least > 0 && number < static_cast<std::uint64_t>(least))) return false;
  }
  return errno == 0 && end != text.c_str() && *end == '\0';
}

}  // namespace

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
  std::string list;
  for (const std::string& word : words) list += (list.empty() ? "" : " or ") + word;
  return Must(list, [words](const std::string& text) {
    return std::find(words.begin(), words.end(), text) != words.end();
  });
}

std::string Explain(const CLI::App& program, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = program.remaining(true);
  if (!unknown.empty()) return "unexpected argument '" + unknown.front() + "'";
  const CLI::App* command = &program;
  while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
  const bool lacks_something = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
  if (lacks_something && command->get_require_subcommand_min() != 0) return "a command is required";
  return error.what();
}

}  // namespace terminal
