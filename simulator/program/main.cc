// networkgrpc-simulator: the simulated device as a program. It prints one line with
// its endpoints to standard output and serves until SIGTERM, SIGINT or SIGHUP. With
// `run`, it serves while a command runs instead. With `ctl`, it sends commands to a
// running simulator.
//
// Exit status: 0 ended by a signal, --help, --version, or all commands of ctl
// succeeded; 1 it cannot serve or save, or a command of ctl failed; 2 the command
// line is wrong. With run: that of the command (program/command.h).
#include <pthread.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <map>
#include <optional>
#include <stdexcept>

#include "simulator/factory_defaults.h"
#include "simulator/json.h"
#include "simulator/program/command.h"
#include "simulator/program/control_commands.h"
#include "simulator/program/control_socket.h"
#include "simulator/program/private_folder.h"
#include "simulator/program/program_options.h"
#include "state_document/save_file.h"
#include "terminal/arenas.h"
#include "terminal/printable.h"

namespace {

using simulator::Builder;
using simulator::Json;
using simulator::ProgramOptions;
using simulator::Simulator;

constexpr int kFailed = 1;

// Reads everything before anything starts.
std::vector<Builder> Prepare(const ProgramOptions& options) {
  const simulator::Options& wanted = options.device;
  std::vector<Builder> devices(static_cast<std::size_t>(options.devices));
  for (std::size_t i = 0; i < devices.size(); ++i) {
    devices[i].Ports(wanted.network_manager_port, wanted.dapi_port);
    devices[i].With([&](simulator::Device& it) {
      const int number = static_cast<int>(i) + 1;
      it = simulator::FactoryDefaults(wanted.tx_channels, wanted.rx_channels, number);
    });
    if (!options.states.empty())
      devices[i].StateFile(options.states[options.states.size() == 1 ? 0 : i]);
    for (const simulator::Fault& fault : options.faults) devices[i].Inject(fault);
  }
  return devices;
}

// Before anything starts, too.
void CheckSaves(const std::vector<std::string>& files) {
  std::map<std::string, std::string> named;
  for (const std::string& file : files) {
    const auto [other, is_new] = named.emplace(state_document::CheckSavable(file), file);
    if (!is_new)
      throw std::runtime_error("cannot save two devices to one file: " + other->second + " and " +
                               file);
  }
}

void PrintReadyLines(const std::vector<Simulator>& devices, const std::string& control) {
  for (const Simulator& device : devices) {
    std::cout << "ready network_manager_url=" << device.NetworkManagerUrl()
              << " grpc_dapi_url=" << device.DapiUrl();
    if (!control.empty()) std::cout << " control=unix:" << control;
    std::cout << '\n';
  }
  if (!std::cout.flush())
    throw std::runtime_error(std::string("cannot print the ready line: standard output: ") +
                             std::strerror(errno));
}

void PrintError(const std::exception& error) {
  std::cerr << simulator::kProgramName << ": " << terminal::Printable(error.what()) << '\n';
}

bool IsIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t EndingSignals() {
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGTERM);
  sigaddset(&ending, SIGINT);
  if (!IsIgnored(SIGHUP)) sigaddset(&ending, SIGHUP);  // ignored by nohup
  return ending;
}

// Writes every state that can be written. False if one cannot.
bool SaveAll(std::vector<Simulator>& devices, const std::vector<std::string>& files) {
  bool are_saved = true;
  for (std::size_t i = 0; i < files.size(); ++i) {
    try {
      devices[i].SaveState(files[i]);
    } catch (const std::exception& error) {
      PrintError(error);
      are_saved = false;
    }
  }
  return are_saved;
}

// What the first device's ready line says, for the command of run.
std::vector<std::string> Variables(const Simulator& device, const std::string& control) {
  std::vector<std::string> variables{"network_manager_url=" + device.NetworkManagerUrl(),
                                     "grpc_dapi_url=" + device.DapiUrl()};
  if (!control.empty()) variables.push_back("control=unix:" + control);
  return variables;
}

int Serve(const ProgramOptions& options) {
  const simulator::Command command(options.command);
  const std::vector<Builder> prepared = Prepare(options);
  CheckSaves(options.saves);
  // Before any thread starts, so that every thread leaves the signals to sigwait.
  const sigset_t ending = EndingSignals();
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);
  // A closed standard output or error, or a limit of the size of files, must not
  // keep the states from being saved: these are reported as errors.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  // gRPC's own lines about a port in use say less than the error below. A user who
  // wants them sets the variable.
  setenv("GRPC_VERBOSITY", "NONE", 0);

  std::vector<Simulator> devices;
  std::optional<simulator::PrivateFolder> folder;
  if (options.has_private_control) folder.emplace();
  const std::string path = folder.has_value() ? folder->Path() + "/control" : options.control;
  std::optional<simulator::ControlSocket> control;
  if (!path.empty()) control.emplace(path);
  for (const Builder& builder : prepared) devices.push_back(builder.Start());
  if (control.has_value())
    control->Serve([&devices](const std::string& request) {
      return simulator::AnswerControlRequest(devices, request);
    });
  int status = EXIT_SUCCESS;
  if (options.command.empty()) {
    PrintReadyLines(devices, path);
    int signal = 0;
    sigwait(&ending, &signal);
  } else {
    status = command.Run(Variables(devices.front(), path), ending);
  }

  control.reset();
  for (Simulator& device : devices) device.Stop();
  if (!SaveAll(devices, options.saves) && status == EXIT_SUCCESS) status = kFailed;
  return status;
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
  terminal::FixNumberOfArenas();
  int status = EXIT_SUCCESS;
  const std::optional<ProgramOptions> options = simulator::ParseProgramOptions(argc, argv, status);
  if (!options.has_value()) return status;
  try {
    return options->requests.empty() ? Serve(*options) : Ask(*options);
  } catch (const std::exception& error) {
    PrintError(error);
    return kFailed;
  }
}
