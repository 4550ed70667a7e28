#include "simulator/program/serve.h"

#include <poll.h>
#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>

#include "simulator/factory_defaults.h"
#include "simulator/program/address_book.h"
#include "simulator/program/command.h"
#include "simulator/program/control_commands.h"
#include "simulator/program/control_socket.h"
#include "simulator/program/private_folder.h"
#include "simulator/program/scenario.h"
#include "simulator/proxy.h"
#include "simulator/replay.h"
#include "state_document/save_file.h"
#include "terminal/printable.h"

namespace simulator {
namespace {

// Those who watch the calls. They outlive the devices.
struct Watchers {
  explicit Watchers(const std::vector<std::string>& files) {
    for (const std::string& file : files) scenarios.emplace_back(file);
  }

  // The first scenario that waits for the call holds it; the others do not count it.
  bool Hold(int device, const std::string& method, const Hooks::Resume& resume) {
    return std::any_of(scenarios.begin(), scenarios.end(),
                       [&](Scenario& scenario) { return scenario.Hold(device, method, resume); });
  }

  void Start(std::vector<Simulator>& devices) {
    if (control.has_value())
      control->Serve([&devices](const std::string& request) {
        return AnswerControlRequest(devices, request);
      });
    for (Scenario& scenario : scenarios)
      scenario.Start([&devices](int device, const std::string& command, const Json& argument) {
        Perform(devices, device, command, argument);
      });
  }
  // To be called before the devices end.
  void End() {
    if (control.has_value()) control->Stop();
    for (Scenario& scenario : scenarios) scenario.End();
  }

  // Makes the control socket; returns its path, empty for none.
  std::string Listen(const ProgramOptions& options) {
    if (options.has_private_control) folder.emplace();
    const std::string path = folder.has_value() ? folder->Path() + "/control" : options.control;
    if (!path.empty()) control.emplace(path);
    return path;
  }

  std::list<Scenario> scenarios;
  std::optional<PrivateFolder> folder;
  std::optional<ControlSocket> control;
};

// The devices, and their end in every case.
class Devices {
 public:
  explicit Devices(Watchers& those) : watchers(those) {}
  ~Devices() { End(); }
  Devices(const Devices&) = delete;
  Devices& operator=(const Devices&) = delete;

  void Start(const std::vector<Builder>& prepared) {
    for (const Builder& builder : prepared) all.push_back(builder.Start());
    watchers.Start(all);
  }
  void End() {
    watchers.End();
    for (Simulator& device : all) device.Stop();
  }
  std::vector<Simulator>& All() { return all; }

 private:
  Watchers& watchers;
  std::vector<Simulator> all;
};

// Reads everything before anything starts.
std::vector<Builder> Prepare(const ProgramOptions& options, Watchers& watchers) {
  const Options& wanted = options.device;
  const auto network = std::make_shared<AudioNetwork>();
  std::vector<Builder> devices(static_cast<std::size_t>(options.devices));
  for (std::size_t i = 0; i < devices.size(); ++i) {
    devices[i].Join(network);
    devices[i].Ports(wanted.network_manager_port, wanted.dapi_port);
    devices[i].Sockets(wanted.network_manager_socket, wanted.dapi_socket, wanted.socket_mode);
    devices[i].With([&](Device& it) {
      const int number = static_cast<int>(i) + 1;
      it = FactoryDefaults(wanted.tx_channels, wanted.rx_channels, number);
    });
    if (!options.states.empty())
      devices[i].StateFile(options.states[options.states.size() == 1 ? 0 : i]);
    if (!options.names.empty())
      devices[i].With([&](Device& it) { it.dante.name = options.names[i]; });
    devices[i].With(Hooks{
        watchers.scenarios.empty()
            ? decltype(Hooks::hold)()
            : [&watchers, i](
                  const std::string& method,
                  const Hooks::Resume&
                      resume) { return watchers.Hold(static_cast<int>(i) + 1, method, resume); },
        [&watchers] {
          if (watchers.control.has_value()) watchers.control->Retry();
        }});
    for (const Fault& fault : options.faults) devices[i].Inject(fault);
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

// What the ready line says, each "name=value".
std::vector<std::string> Variables(const Simulator& device, const std::string& control) {
  std::vector<std::string> variables{"network_manager_url=" + device.NetworkManagerUrl(),
                                     "grpc_dapi_url=" + device.DapiUrl()};
  if (!control.empty()) variables.push_back("control=unix:" + control);
  return variables;
}

std::string ReadyLines(const std::vector<Simulator>& devices, const std::string& control) {
  std::string lines;
  for (const Simulator& device : devices) {
    lines += "ready";
    for (const std::string& variable : Variables(device, control)) lines += ' ' + variable;
    lines += '\n';
  }
  return lines;
}

// Writes the devices to the address book; returns what is to be printed instead.
std::string UseBook(std::vector<Simulator>& devices, const std::string& file) {
  std::string text;
  if (file.empty()) return text;
  for (Simulator& device : devices) {
    const std::string name = device.WithDevice([](const Device& it) { return it.dante.name; });
    const BookEntry entry{name, device.NetworkManagerUrl(), device.DapiUrl()};
    file == "-" ? void(text += ToToml(entry)) : WriteToBook(file, entry);
  }
  return text;
}

void Print(const std::string& text) {
  if (!(std::cout << text << std::flush))
    throw std::runtime_error(std::string("cannot print the ready line: standard output: ") +
                             std::strerror(errno));
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

// Before clients can use up all descriptors.
Descriptor Watch(const sigset_t& signals) {
  Descriptor watched(signalfd(-1, &signals, SFD_CLOEXEC));
  if (!watched.IsOpen())
    throw std::runtime_error(std::string("cannot watch for signals: ") + std::strerror(errno));
  return watched;
}

// Until one of the signals comes, which all threads block, or the process ends; a
// closed descriptor stands for none.
void WaitForEnd(const Descriptor& signals, const Descriptor& process) {
  std::array<pollfd, 2> awaited{{{signals.Get(), POLLIN, 0}, {process.Get(), POLLIN, 0}}};
  while (poll(awaited.data(), awaited.size(), -1) < 0) {
  }
}

// Before any thread starts, so that every thread leaves the signals to the main one: also
// the end of a command, which another thread would take and ignore.
sigset_t PrepareSignals() {
  const sigset_t ending = EndingSignals();
  sigset_t blocked = ending;
  sigaddset(&blocked, SIGCHLD);
  pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
  std::signal(SIGCHLD, SIG_DFL);  // an ignored one cannot be awaited
  // A closed standard output or error, or a limit of the size of files, must not
  // keep the states from being saved: these are reported as errors.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  return ending;
}

std::shared_ptr<Replay> MakeReplay(const ProgramOptions& options) {
  if (options.recording.empty()) return nullptr;
  return std::make_shared<Replay>(ReadRecording(options.recording));
}

std::shared_ptr<Proxy> MakeProxy(const ProgramOptions& options) {
  if (options.log.empty()) return nullptr;
  return std::make_shared<Proxy>(options.network_manager_url, options.dapi_url, options.log,
                                 options.redacts);
}

// False, with an error, if calls came that are not in the recording.
bool IsComplete(const Replay& replay) {
  const std::size_t missing = replay.Missing();
  if (missing != 0)
    PrintError(std::runtime_error(std::to_string(missing) + " calls were not in the recording"));
  return missing == 0;
}

// The process to end with; 0 for none.
pid_t Companion(const ProgramOptions& options) {
  if (options.pid != 0) return options.pid;
  return options.export_to.has_value() ? CallingShell() : 0;
}

std::string CompanionText(const ProgramOptions& options) {
  return options.pid != 0 ? "process " + std::to_string(options.pid) : "this shell";
}

}  // namespace

int Serve(const ProgramOptions& options) {
  const Command command(options.command);
  Watchers watchers(options.scenarios);
  std::vector<Builder> prepared = Prepare(options, watchers);
  CheckSaves(options.saves);
  const pid_t companion = Companion(options);
  const Descriptor watched = companion != 0 ? WatchProcess(companion) : Descriptor();
  Background background;
  if (options.export_to.has_value())
    if (const std::optional<int> status = background.Start()) return *status;
  const sigset_t ending = PrepareSignals();
  const Descriptor signals = Watch(ending);
  // gRPC's own lines about a port in use say less than the error below. A user who
  // wants them sets the variable.
  setenv("GRPC_VERBOSITY", "NONE", 0);

  const std::shared_ptr<Replay> replay = MakeReplay(options);
  if (replay != nullptr) prepared.front().AnswerWith(replay);
  const std::shared_ptr<Proxy> proxy = MakeProxy(options);
  if (proxy != nullptr) prepared.front().AnswerWith(proxy);
  const std::string path = watchers.Listen(options);
  Devices devices(watchers);
  devices.Start(prepared);
  const std::string entries = UseBook(devices.All(), options.address_book);
  const std::vector<std::string> variables = Variables(devices.All().front(), path);
  int status = EXIT_SUCCESS;
  if (!options.command.empty()) {
    status = command.Run(variables, ending);
  } else {
    if (options.export_to.has_value())
      background.Ready(ExportLines(*options.export_to, variables, CompanionText(options)));
    else
      Print(ReadyLines(devices.All(), path) + entries);
    WaitForEnd(signals, watched);
  }

  devices.End();
  const bool is_replayed = replay == nullptr || IsComplete(*replay);
  const bool is_recorded = proxy == nullptr || proxy->IsComplete();
  const bool are_saved = SaveAll(devices.All(), options.saves);
  const bool has_failed = !is_replayed || !is_recorded || !are_saved;
  return status == EXIT_SUCCESS && has_failed ? kFailed : status;
}

void PrintError(const std::exception& error) {
  std::cerr << kProgramName << ": " << terminal::Printable(error.what()) << '\n';
}

}  // namespace simulator
