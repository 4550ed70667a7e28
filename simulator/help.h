// What --help prints: a form that people can read and help2man can turn into a
// manual page.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace simulator {

class Help : public CLI::FormatterBase {
 public:
  std::string make_help(const CLI::App* command, std::string name,
                        CLI::AppFormatMode mode) const override;
};

}  // namespace simulator
