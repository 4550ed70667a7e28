// What --help prints: at most 80 columns wide, with one column for all
// descriptions, in a form that help2man turns into a manual page.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace terminal {

/// The text in lines of at most 80 columns, broken between words; each line is
/// indented and ended by a line feed.
std::string Wrapped(const std::string& text, std::size_t indent);

/// A term and its description, in the column of all descriptions.
std::string Entry(const std::string& term, const std::string& description);

/// A blank line, the heading and the body; nothing if the body is empty.
std::string Section(const std::string& heading, const std::string& body);

/// Commands that can be typed as they stand, one a line.
std::string Examples(const std::vector<std::string>& commands);

class Help : public CLI::FormatterBase {
 public:
  /// The sections after those of the command line; `all` for --help-all.
  using MoreSections = std::function<std::string(const CLI::App& command, bool all)>;

  explicit Help(MoreSections more) : more_sections(std::move(more)) {}

  /// With `mode` All, and for a program without --help-all, the page also
  /// describes the arguments and options of the command's own commands.
  std::string make_help(const CLI::App* command, std::string name,
                        CLI::AppFormatMode mode) const override;

 private:
  MoreSections more_sections;
};

}  // namespace terminal
