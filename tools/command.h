// How a command is described: what it does, its arguments and options, its examples.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/json.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

/// The text for a result.
using ToText = std::function<std::string(const Json& result)>;

/// A command. `run` calls the daemons and throws a Failure; `show` makes text of
/// the result of `run` without further calls.
struct Verb {
  std::string description;
  std::function<Json()> run;
  ToText show;
  std::vector<std::string> examples;
};

/// What a shell can offer for an argument.
enum class Candidates {
  kNothing,
  kInterfaceNames,
  kInterfaceIds,
  kTxChannels,
  kRxChannels,
  kSwitchModes,
  kSampleRates,
  kOnOff,
  kDevices,
  kFiles,
};

/// Where the value of an argument or option goes; it must live as long as the tool.
/// Integers are decimal and within the range of their type, a bool is on or off. A list
/// has at least one value. What is optional stays empty unless it is given.
using Value = std::variant<std::string*, std::vector<std::string>*, std::optional<std::string>*,
                           std::optional<bool>*, std::int32_t*, std::uint32_t*, std::uint64_t*,
                           std::optional<std::int32_t>*, std::optional<std::uint32_t>*,
                           std::optional<std::uint64_t>*>;

class CommandLine;

/// An argument or option.
class Parameter {
 public:
  Parameter(CommandLine& line, CLI::Option* made) : command_line(line), option(made) {}

  Parameter& Offer(Candidates what);
  /// Values for which `fault` returns what is wrong with them.
  Parameter& Reject(std::string (*fault)(const std::string& value));
  Parameter& Required();
  /// Only these values.
  Parameter& OneOf(const std::vector<std::string>& words);

 private:
  CommandLine& command_line;
  CLI::Option* option;
};

/// A command in the making. The names of options begin with "--".
class Command {
 public:
  Command(CommandLine& line, CLI::App& made) : command_line(line), app(&made) {}

  Parameter Argument(const std::string& name, Value value, const std::string& description);
  Parameter OptionalArgument(const std::string& name, Value value, const std::string& description);
  /// `type` stands for the value in the help, such as "FILE".
  Parameter Option(const std::string& name, const std::string& type, Value value,
                   const std::string& description);
  Command& Flag(const std::string& name, bool* value, const std::string& description);
  Command& Seconds(const std::string& name, double* value, double least,
                   const std::string& description);
  /// At most one of these options can be given.
  Command& AtMostOne(const std::vector<std::string>& options);

  CLI::App& App() const { return *app; }

 private:
  Parameter Add(const std::string& name, Value value, const std::string& description);

  CommandLine& command_line;
  CLI::App* app;
};

}  // namespace tool
