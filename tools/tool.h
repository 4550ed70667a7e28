// The frame that every command shares: global options, what a command does and
// how its result reads, its examples, what can complete its arguments.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tools/deadline.h"
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

/// What a command does. `run` asks the daemons and throws a Failure; `show`
/// makes text of what `run` gave, and never asks.
struct Verb {
  std::string description;
  std::function<Json()> run;
  std::function<std::string(const Json&)> show;
  std::vector<std::string> examples;
};

class Tool {
 public:
  Tool();
  ~Tool() = default;

  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;

  /// A noun. Alone on the command line it stands for `verb`, unless that is "".
  CLI::App& AddNoun(const std::string& name, const std::string& description,
                    const std::string& verb);
  /// A verb of a noun, or of the tool itself.
  CLI::App& AddVerb(CLI::App& parent, const std::string& name, Verb verb);
  /// --yes, for a command that asks before it acts.
  void AddYes(CLI::App& verb);
  /// An on/off argument or option.
  void Offer(CLI::Option* option, Candidates what) { candidates[option] = what; }

  /// Says what is about to happen and asks the person at the terminal whether to
  /// go on; throws when not. Without a terminal --yes is required.
  void Confirm(const std::string& what, const std::string& question);

  /// Parses, runs, prints; returns the exit status.
  int Main(int argc, char** argv);
  /// Prints what can complete the last of `words`, one candidate a line: its
  /// text, a tab, its description. A line without text stands for the files that
  /// there are.
  int Complete(const std::vector<std::string>& words);

  /// The time limit of the command that runs, for one that starts it anew.
  deadline::Limit Limit() const;

  CLI::App app;
  bool json = false;
  bool yes = false;
  /// Set by a command that leaves a thread in a call: the process must then end
  /// without running destructors.
  bool leave_at_once = false;

 private:
  struct Found;

  void AddGlobalOptions();
  std::string MoreHelp(const CLI::App& command, bool all) const;
  void UseEndpoints() const;
  Found Selected() const;
  int Run(const Found& found);
  int Fail(const Found& found, const Failure& failure) const;
  int Usage(const std::string& message, bool as_json) const;

  std::map<const CLI::App*, Verb> verbs;
  std::map<const CLI::App*, std::string> verb_of_noun;
  std::map<const CLI::Option*, Candidates> candidates;
  double timeout = 30;
  std::string network_manager;
  std::string dapi;
};

/// Accepts a number of seconds.
CLI::Validator Seconds(double least);

// One per file of the same name.
void AddInterface(Tool& tool);
void AddSwitch(Tool& tool);
void AddHost(Tool& tool);
void AddDante(Tool& tool);
void AddChannel(Tool& tool);
void AddRouting(Tool& tool);
void AddStatus(Tool& tool);
void AddDoctor(Tool& tool);
void AddState(Tool& tool);
void AddWatch(Tool& tool);

}  // namespace tool
