// What all commands share: global options, how a command runs and how its result
// is shown, its examples, what completes its arguments.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/call_options.h"
#include "tools/command.h"
#include "tools/failure.h"
#include "tools/json.h"

namespace tool {

/// The value of one member, in a line: true and false as "on" and "off".
ToText ShowMember(const char* member);

const char* OnOff(bool on);

/// "yes", "no", or "unknown" for null.
const char* YesNoOrUnknown(const Json& value);

/// The end of a line about a result with the members that Apply adds.
const char* ShowApplied(const Json& result);

class Checkpoint;
struct Device;

class Tool {
 public:
  Tool();
  ~Tool();

  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;

  /// The tool itself, as the parent of commands.
  Command Top();
  /// A noun. Without a verb it stands for `verb`, unless that is "".
  Command AddNoun(const std::string& name, const std::string& description, const std::string& verb);
  /// A verb of a noun, or of the tool itself.
  Command AddVerb(const Command& parent, const std::string& name, Verb verb);
  /// A verb that means the same as its noun, as which it is reported; help does not show it.
  Command AddOldSpelling(const Command& noun, const std::string& name, Verb verb);
  /// The option --yes of a command that calls Confirm.
  void AddYes(Command& verb) {
    verb.Flag("-y,--yes", &yes, "Do not ask for confirmation; required if there is no terminal");
  }

  /// The option --confirm-within of a command that changes settings of this daemon, or of
  /// both for kNone.
  void Undoable(Command& verb, Daemon of);

  /// Prints what will change, a line each, and asks whether to continue; throws if not.
  /// Without a terminal --yes is required.
  ///
  /// Every command asks that changes what is in use now: an address in use, a reload or
  /// restart, which also applies what others have stored, the switch mode, transmission.
  void Confirm(const std::vector<std::string>& changes) const {
    Confirm([&changes] { return changes; });
  }
  /// The same, of lines that take calls to find; not made with --yes.
  void Confirm(const std::function<std::vector<std::string>()>& find) const;

  /// Returns the exit status if that is all: after printing help, or why it is wrong.
  std::optional<int> Parse(const std::vector<std::string>& arguments);
  /// Runs the command that was parsed, and prints its result; returns the exit status.
  int Run(const std::vector<std::string>& arguments);
  /// Prints what can complete the last of `words`, one candidate per line: its
  /// text, a tab, its description. A line without text stands for file names.
  int Complete(const std::vector<std::string>& words);

  /// Seconds that a call may take.
  double Timeout() const { return calls.timeout; }
  bool Verbose() const { return calls.verbose; }

  bool json = false;
  bool yes = false;
  std::string confirm_by;  // when a change is undone unless it is confirmed; empty: kept
  /// The device of a process that was started for one of several; see each_device.h.
  std::string only_device;
  bool quiet = false;  // no text of a result
  std::string get;     // the fields to print instead; empty: the whole

 private:
  void AddGlobalOptions();
  int RunOnDevices(const std::vector<std::string>& arguments);
  void ParseArranged(std::vector<std::string> arguments);
  int RunOnDevice(Device device);
  void RejectForSeveral() const;
  int RunHere();
  Json RunVerb(const Verb& verb);
  std::string ResultText(const Verb& verb, const Json& result) const;
  int Fail(const Failure& failure) const;
  int Usage(const std::string& message, bool as_json) const;

  const std::unique_ptr<CommandLine> line;
  CallOptions calls;
  std::string network_manager;
  std::string dapi;
  std::string typed = "networkgrpc";
  double confirm_within = 0;  // seconds; 0: keep without confirmation
  std::unique_ptr<Checkpoint> checkpoint;
  std::string on;
  std::string host;
};

}  // namespace tool
