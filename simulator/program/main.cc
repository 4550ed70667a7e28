// networkgrpc-simulator: the simulated device as a program. It prints one line with
// its endpoints to standard output and serves until SIGTERM, SIGINT or SIGHUP. With
// `run`, it serves while a command runs instead. With `ctl`, it sends commands to a
// running simulator.
//
// Exit status: 0 ended by a signal, --help, --version, or all commands of ctl
// succeeded; 1 it cannot serve or save, or a command of ctl failed; 2 the command
// line is wrong. With run: that of the command (program/command.h).
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>

#include "simulator/json.h"
#include "simulator/program/control_socket.h"
#include "simulator/program/program_options.h"
#include "simulator/program/serve.h"
#include "terminal/arenas.h"

namespace {

using simulator::Json;
using simulator::ProgramOptions;

void PrintResult(const std::string& command, const Json& result) {
  if (command == "state") {
    std::cout << result.dump(2) << '\n';
  } else if (result.is_array()) {
    for (const Json& line : result)
      std::cout << (line.is_string() ? line.get<std::string>() : line.dump()) << '\n';
  }
}

int Ask(const ProgramOptions& options) {
  for (const simulator::CtlRequest& it : options.requests) {
    const Json request = {
        {"command", it.command}, {"device", it.device}, {"argument", it.argument}};
    const Json answer = Json::parse(simulator::AskControl(options.control, request.dump()));
    if (!answer.at("ok").get<bool>())
      throw std::runtime_error(answer.at("error").get<std::string>());
    PrintResult(it.command, answer.at("result"));
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  terminal::FixNumberOfArenas();
  int status = EXIT_SUCCESS;
  const std::optional<ProgramOptions> options = simulator::ParseProgramOptions(argc, argv, status);
  if (!options.has_value()) return status;
  try {
    return options->requests.empty() ? simulator::Serve(*options) : Ask(*options);
  } catch (const std::exception& error) {
    simulator::PrintError(error);
    return simulator::kFailed;
  }
}
