// Starts another program.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tool {

/// What a descriptor of the new process is: one of this process, or /dev/null.
struct Redirection {
  static constexpr int kNull = -1;

  int descriptor;
  int to = kNull;
};

struct SpawnOptions {
  std::string program;  // searched for in PATH, unless it has a slash
  std::vector<Redirection> files;
  bool own_session = false;
};

/// No signal is blocked in the new process. `words` are its arguments, from the name on.
/// Throws a Failure.
pid_t Spawn(const SpawnOptions& options, std::vector<std::string> words);

/// This program, whatever its file is called by now.
inline constexpr const char* kThisProgram = "/proc/self/exe";

}  // namespace tool
