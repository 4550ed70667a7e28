// The command line of networkgrpc-simulator.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simulator/simulator.h"

namespace simulator {

inline constexpr const char* kProgramName = "networkgrpc-simulator";

/// A wish to a simulator that runs.
struct CtlRequest {
  std::string command;   // as in control.h
  std::string argument;  // empty when the command has none
  int device = 1;
};

struct ProgramOptions {
  Options device;
  int devices = 1;
  std::vector<std::string> states;  // none, one for all, or one for each device
  std::vector<std::string> saves;   // none, or one for each device
  std::vector<Fault> faults;
  std::string control;             // path of the socket, empty for none
  std::vector<CtlRequest> wishes;  // not empty: for a simulator that runs
};

/// Empty when the program is to end with `status`: it has printed the help or the
/// version, or what is wrong.
std::optional<ProgramOptions> ParseProgramOptions(int argc, char** argv, int& status);

}  // namespace simulator
