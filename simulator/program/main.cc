// networkgrpc-simulator: the simulated device as a program. It prints one line with
// its endpoints to standard output and serves until SIGTERM, SIGINT or SIGHUP. With
// `run`, it serves while a command runs instead. With `ctl`, it sends commands to a
// running simulator.
//
// Exit status: 0 ended by a signal, --help, --version, or all commands of ctl
// succeeded; 1 it cannot serve or save, or a command of ctl failed; 2 the command
// line is wrong; 3 the time limit of ctl wait has passed. With run: that of the command
// (program/command.h).
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>

#include "simulator/json.h"
#include "simulator/program/control_socket.h"
#include "simulator/program/program_options.h"
#include "simulator/program/serve.h"
#include "simulator/state.h"
#include "terminal/arenas.h"

namespace {

using simulator::Json;
using simulator::ProgramOptions;

constexpr int kTimedOut = 3;

void PrintResult(const std::string& command, const Json& result) {
  if (command == "state") {
    std::cout << result.dump(2) << '\n';
  } else if (result.is_array()) {
    for (const Json& line : result)
      std::cout << (line.is_string() ? line.get<std::string>() : line.dump()) << '\n';
  }
}

Json Argument(const simulator::CtlRequest& request, const std::string& file) {
  if (request.command != "load") return request.argument;
  const state_document::Document document = state_document::ReadFile(file);
  simulator::ReadState(document, {});  // reports what is wrong with the line
  return document.Root();
}

// False if the time limit has passed.
bool Ask(const simulator::CtlRequest& it, const ProgramOptions& options) {
  const Json request = {{"command", it.command},
                        {"device", it.device},
                        {"argument", Argument(it, options.loaded)},
                        {"count", it.count}};
  const auto limit = std::chrono::milliseconds(static_cast<std::int64_t>(it.timeout * 1000));
  const std::optional<std::string> text =
      simulator::AskControl(options.control, request.dump(), limit);
  if (!text.has_value() && it.command == "wait") return false;
  if (!text.has_value())
    throw std::runtime_error("no answer from control socket " + options.control);
  const Json answer = Json::parse(*text);
  if (!answer.at("ok").get<bool>()) throw std::runtime_error(answer.at("error").get<std::string>());
  PrintResult(it.command, answer.at("result"));
  return true;
}

int AskAll(const ProgramOptions& options) {
  for (const simulator::CtlRequest& request : options.requests)
    if (!Ask(request, options)) {
      simulator::PrintError(std::runtime_error("fewer than " + std::to_string(request.count) +
                                               " calls of " + request.argument.get<std::string>() +
                                               " within the time limit"));
      return kTimedOut;
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
    return options->requests.empty() ? simulator::Serve(*options) : AskAll(*options);
  } catch (const std::exception& error) {
    simulator::PrintError(error);
    return simulator::kFailed;
  }
}
