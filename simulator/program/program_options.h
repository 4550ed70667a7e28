// The command line of networkgrpc-simulator.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "simulator/json.h"
#include "simulator/program/background.h"
#include "simulator/simulator.h"

namespace simulator {

inline constexpr const char* kProgramName = "networkgrpc-simulator";

/// A request to a running simulator.
struct CtlRequest {
  std::string command;    // as in control_commands.h
  Json argument;          // "" when the command has none
  std::size_t count = 1;  // of wait
  double timeout = 20;    // seconds
  int device = 1;
};

struct ProgramOptions {
  Options device;
  int devices = 1;
  std::vector<std::string> names;   // none, or one for each device
  std::vector<std::string> states;  // none, one for all, or one for each device
  std::vector<std::string> saves;   // none, or one for each device
  std::vector<std::string> scenarios;
  std::vector<Fault> faults;
  std::string control;               // path of the socket, empty for none
  bool has_private_control = false;  // the socket is in a PrivateFolder
  std::string address_book;          // file, "-" to print, empty for none
  pid_t pid = 0;                     // of the process to end with, 0 for none
  std::optional<Shell> export_to;
  std::string log;                  // of record, empty for none
  std::string network_manager_url;  // of record: the real daemons
  std::string dapi_url;
  bool redacts = false;
  std::string recording;             // of replay, empty for none
  std::vector<std::string> command;  // of run, record and replay, empty for none
  std::string loaded;                // file of ctl load
  std::vector<CtlRequest> requests;  // if not empty, the command line is that of ctl
};

/// Empty if the program has to exit with `status`: the help, the version or an
/// error has been printed.
std::optional<ProgramOptions> ParseProgramOptions(int argc, char** argv, int& status);

}  // namespace simulator
