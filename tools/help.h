// What --help prints: a form that people can read and help2man can turn into a
// manual page.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

namespace tool {

/// The examples of a command.
using ExamplesOf = std::function<std::vector<std::string>(const CLI::App&)>;

class Help : public CLI::FormatterBase {
 public:
  explicit Help(ExamplesOf examples) : examples_of(std::move(examples)) {}

  std::string make_help(const CLI::App* command, std::string name,
                        CLI::AppFormatMode mode) const override;

 private:
  ExamplesOf examples_of;
};

/// "--ip ADDRESS", with its short name in front where there is one.
std::string OptionText(const CLI::Option& option);

/// "set ID", as it is typed after the noun.
std::string VerbText(const CLI::App& verb);

}  // namespace tool
