// The command of `networkgrpc-simulator run`.
#pragma once

#include <csignal>
#include <string>
#include <vector>

namespace simulator {

/// The exit status as a shell says it, of what wait() reports.
int ExitStatusOf(int ending);

/// A program that is started as this one was: with its environment, its blocked and
/// its ignored signals.
class Command {
 public:
  /// To be made before this process changes signals or environment.
  explicit Command(std::vector<std::string> name_and_arguments);

  /// Runs it with these variables, "name=value", and waits for its end. Passes on
  /// the signals of `awaited`, which all threads block, except those of a terminal,
  /// which the command receives itself. Returns its exit status, or 128 plus the
  /// signal that ended it; 127 if it is not found and 126 if it cannot be run, with
  /// an error printed.
  int Run(const std::vector<std::string>& variables, sigset_t awaited) const;

 private:
  int Start(const std::vector<std::string>& variables, pid_t& process) const;

  std::vector<std::string> words;
  std::vector<std::string> environment;
  sigset_t blocked{};
  sigset_t not_ignored{};
};

}  // namespace simulator
