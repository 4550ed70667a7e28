// Checks of what is typed on a command line, with one form of message.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace terminal {

CLI::Validator Integer(std::int64_t least, std::uint64_t most);

/// An argument or option that accepts every integer of its type.
template <class Number>
CLI::Option* AddInteger(CLI::App& command, const std::string& name, Number& value,
                        const std::string& description) {
  using Limits = std::numeric_limits<Number>;
  return command.add_option(name, value, description)
      ->check(Integer(static_cast<std::int64_t>(Limits::min()),
                      static_cast<std::uint64_t>(Limits::max())));
}

/// A number of seconds, at most a day.
CLI::Validator Seconds(double least);

CLI::Validator OneOf(const std::vector<std::string>& words);

/// What is wrong with a command line that `program` cannot parse: the first word
/// that nothing accepts, if there is one.
std::string Explain(const CLI::App& program, const CLI::ParseError& error);

}  // namespace terminal
