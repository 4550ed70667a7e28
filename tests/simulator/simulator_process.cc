#include "tests/simulator/simulator_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace support {
namespace {

constexpr int kLimitMs = 20000;

bool WaitFor(int file) {
  pollfd wanted{file, POLLIN, 0};
  return poll(&wanted, 1, kLimitMs) == 1;
}

// In the child of a fork, between it and exec.
[[noreturn]] void Become(char* const* arguments, int out) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  dup2(out, STDOUT_FILENO);
  execv(arguments[0], arguments);
  _exit(127);
}

}  // namespace

std::string SimulatorProgram() { return NETWORKGRPC_SIMULATOR; }

SimulatorProcess::SimulatorProcess(const std::vector<std::string>& options) {
  std::vector<std::string> words{SimulatorProgram()};
  words.insert(words.end(), options.begin(), options.end());
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  std::array<int, 2> pipe{};
  if (pipe2(pipe.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  process = fork();
  if (process == 0) Become(arguments.data(), pipe[1]);
  close(pipe[1]);
  out = pipe[0];
  try {
    NextDevice();
  } catch (const std::runtime_error&) {
    End(SIGKILL);
    throw;
  }
}

SimulatorProcess::~SimulatorProcess() {
  if (process > 0) End(SIGKILL);
}

void SimulatorProcess::NextDevice() {
  ready_line.clear();
  char next = '\0';
  while (next != '\n') {
    if (!WaitFor(out)) throw std::runtime_error("the simulator is not ready in time");
    if (read(out, &next, 1) != 1) throw std::runtime_error("the simulator ended: " + ready_line);
    ready_line += next;
  }
}

std::string SimulatorProcess::Value(const std::string& key) const {
  const std::size_t start = ready_line.find(key);
  if (start == std::string::npos) return "";
  const std::size_t end = ready_line.find_first_of(" \n", start);
  return ready_line.substr(start + key.size(), end - start - key.size());
}

void SimulatorProcess::Signal(int signal) const { kill(process, signal); }

// It prints nothing more, so its output becomes readable when it ends.
int SimulatorProcess::End(int signal) {
  Signal(signal);
  if (!WaitFor(out)) kill(process, SIGKILL);
  close(out);
  int status = 0;
  waitpid(process, &status, 0);
  process = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace support
