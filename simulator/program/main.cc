// networkgrpc-simulator: the simulated device as a program. It says where it
// listens in one line on standard output and serves until SIGTERM or SIGINT.
// With `ctl`, it asks or changes another one that runs.
//
// Exit status: 0 ended by a signal, or --help or --version, or ctl is done; 1 it
// cannot serve or save, or ctl failed; 2 bad options.
#include <pthread.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>

#include "simulator/factory_defaults.h"
#include "simulator/json.h"
#include "simulator/program/control.h"
#include "simulator/program/control_socket.h"
#include "simulator/program/program_options.h"
#include "terminal/printable.h"

namespace {

using simulator::Devices;
using simulator::Json;
using simulator::ProgramOptions;
using simulator::State;

constexpr int kFailed = 1;

// Everything is read before anything starts.
std::vector<State> InitialStates(const ProgramOptions& options) {
  std::vector<State> states;
  for (int number = 1; number <= options.devices; ++number) {
    State state{
        simulator::FactoryDefaults(options.device.tx_channels, options.device.rx_channels, number),
        {}};
    if (!options.states.empty()) {
      const std::size_t own = options.states.size() == 1 ? 0 : static_cast<std::size_t>(number - 1);
      state = simulator::LoadState(options.states[own], state);
    }
    state.faults.insert(state.faults.end(), options.faults.begin(), options.faults.end());
    states.push_back(std::move(state));
  }
  return states;
}

void PrintReadyLines(const Devices& devices, const std::string& control) {
  for (const auto& device : devices) {
    std::cout << "ready network_manager_url=" << device->NetworkManagerUrl()
              << " grpc_dapi_url=" << device->DapiUrl();
    if (!control.empty()) std::cout << " control=unix:" << control;
    std::cout << '\n';
  }
  std::cout.flush();
}

sigset_t EndingSignals() {
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGTERM);
  sigaddset(&ending, SIGINT);
  return ending;
}

int Serve(const ProgramOptions& options) {
  const std::vector<State> states = InitialStates(options);
  for (const std::string& file : options.saves) simulator::CheckSavable(file);
  // Before any thread starts, so that every thread leaves the signals to sigwait.
  const sigset_t ending = EndingSignals();
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);
  // A port that is taken is told below; gRPC's own lines about it tell less. Who
  // wants them sets the variable.
  setenv("GRPC_VERBOSITY", "NONE", 0);

  Devices devices;
  std::optional<simulator::ControlSocket> control;
  if (!options.control.empty()) control.emplace(options.control);
  for (const State& state : states)
    devices.push_back(std::make_unique<simulator::Simulator>(options.device, state));
  if (control.has_value())
    control->Serve([&devices](const std::string& request) {
      return simulator::AnswerControl(devices, request);
    });
  PrintReadyLines(devices, options.control);
  int signal = 0;
  sigwait(&ending, &signal);

  control.reset();
  for (const auto& device : devices) device->Stop();
  for (std::size_t i = 0; i < options.saves.size(); ++i)
    simulator::SaveState(options.saves[i], devices[i]->CurrentState());
  return EXIT_SUCCESS;
}

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
  int status = EXIT_SUCCESS;
  const std::optional<ProgramOptions> options = simulator::ParseProgramOptions(argc, argv, status);
  if (!options.has_value()) return status;
  try {
    return options->requests.empty() ? Serve(*options) : Ask(*options);
  } catch (const std::exception& error) {
    std::cerr << simulator::kProgramName << ": " << terminal::Printable(error.what()) << '\n';
    return kFailed;
  }
}
