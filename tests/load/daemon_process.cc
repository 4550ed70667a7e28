#include "tests/load/daemon_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace load {
namespace {

constexpr int kStartLimitMs = 20000;

std::array<int, 2> Pipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return ends;
}

std::string PortOf(const std::string& url) { return url.substr(url.rfind(':') + 1); }

}  // namespace

DaemonProcess::DaemonProcess(std::string given_program) : program(std::move(given_program)) {
  Start();
}

DaemonProcess::~DaemonProcess() { Kill(); }

void DaemonProcess::Restart() {
  Kill();
  Start();
}

void DaemonProcess::Start() {
  const auto in = Pipe();
  const auto out = Pipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  std::array<char*, 4> arguments = {program.data(), network_manager_port.data(), dapi_port.data(),
                                    nullptr};
  const int failure =
      posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(in[0]);
  close(out[1]);
  if (failure != 0) throw std::runtime_error("cannot run " + program);
  input = in[1];

  const std::string line = ReadLine(out[0]);
  close(out[0]);
  const std::size_t space = line.find(' ');
  if (space == std::string::npos) throw std::runtime_error(program + " does not serve");
  network_manager_port = PortOf(line.substr(0, space));
  dapi_port = PortOf(line.substr(space + 1));
  setenv("network_manager_url", line.substr(0, space).c_str(), 1);
  setenv("grpc_dapi_url", line.substr(space + 1).c_str(), 1);
}

void DaemonProcess::Kill() {
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(input);
}

std::string DaemonProcess::ReadLine(int descriptor) const {
  std::string line;
  char byte = 0;
  for (;;) {
    pollfd ready{descriptor, POLLIN, 0};
    if (poll(&ready, 1, kStartLimitMs) != 1 || read(descriptor, &byte, 1) != 1 || byte == '\n')
      return line;
    line += byte;
  }
}

}  // namespace load
