// What all commands share: global options, how a command runs and how its result
// is shown, its examples, what completes its arguments.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tools/call.h"
#include "tools/failure.h"
#include "tools/json.h"

namespace tool {

/// What a shell can offer for an argument.
enum class Candidates {
  kInterfaceNames,
  kInterfaceIds,
  kTxChannels,
  kRxChannels,
  kSwitchModes,
  kSampleRates,
  kOnOff,
  kFiles,
  kNothing,
};

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

/// The value of one member, in a line: true and false as "on" and "off".
ToText ShowMember(const char* member);

const char* OnOff(bool on);

/// "yes", "no", or "unknown" for null.
const char* YesNoOrUnknown(const Json& value);

/// The end of a line about a result with the members that Apply adds.
const char* ShowApplied(const Json& result);

class Tool {
 public:
  Tool();
  ~Tool() = default;

  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;

  /// A noun. Without a verb it stands for `verb`, unless that is "".
  CLI::App& AddNoun(const std::string& name, const std::string& description,
                    const std::string& verb);
  /// A verb of a noun, or of the tool itself.
  CLI::App& AddVerb(CLI::App& parent, const std::string& name, Verb verb);
  /// The option --yes of a command that calls Confirm.
  void AddYes(CLI::App& verb);
  /// What completes the value of an argument or option.
  void Offer(CLI::Option* option, Candidates what) { candidates[option] = what; }

  /// Prints what will change, a line each, and asks whether to continue; throws if not.
  /// Without a terminal --yes is required.
  ///
  /// Every command asks that changes what is in use now: an address in use, a reload or
  /// restart, which also applies what others have stored, the switch mode, transmission.
  void Confirm(const std::vector<std::string>& changes) const;
  /// Prints them only, for a command that asks afterwards.
  static void Announce(const std::vector<std::string>& changes);

  /// Parses, runs, prints; returns the exit status.
  int Main(int argc, char** argv);
  /// Prints what can complete the last of `words`, one candidate per line: its
  /// text, a tab, its description. A line without text stands for file names.
  int Complete(const std::vector<std::string>& words);

  /// Seconds that a call may take.
  double Timeout() const { return calls.timeout; }
  bool Verbose() const { return calls.verbose; }

  CLI::App app;
  bool json = false;
  bool yes = false;

 private:
  struct Found;

  void AddGlobalOptions();
  std::string MoreHelp(const CLI::App& command, bool all) const;
  void UseEndpoints() const;
  Found Selected() const;
  void Parse(std::vector<std::string> arguments);
  int Run(const Found& found);
  int Fail(const Found& found, const Failure& failure) const;
  int Usage(const std::string& message, bool as_json) const;

  std::map<const CLI::App*, Verb> verbs;
  std::map<const CLI::App*, std::string> verb_of_noun;
  std::map<const CLI::Option*, Candidates> candidates;
  CallOptions calls;
  std::string network_manager;
  std::string dapi;
};

// Each in the file of the same name.
void AddInterface(Tool& tool);
void AddSwitch(Tool& tool);
void AddHostSettings(Tool& tool);
void AddDante(Tool& tool);
void AddChannel(Tool& tool);
void AddRouting(Tool& tool);
void AddStatus(Tool& tool);
void AddDoctor(Tool& tool);
void AddState(Tool& tool);
void AddWatch(Tool& tool);

}  // namespace tool
