#include "support/child_program.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace support {
namespace {

constexpr int kLimitMs = 40000;

std::array<int, 2> Pipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("cannot create a pipe");
  return ends;
}

}  // namespace

ChildProgram::ChildProgram(std::vector<std::string> command) {
  std::vector<char*> arguments;
  for (std::string& word : command) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const auto to = Pipe();
  const auto from = Pipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, to[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, from[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  const int failure =
      posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(to[0]);
  close(from[1]);
  input = to[1];
  output = from[0];
  if (failure != 0) throw std::runtime_error("cannot run " + command[0]);
}

ChildProgram::~ChildProgram() {
  Kill();
  close(input);
  close(output);
}

std::string ChildProgram::ReadLine() {
  std::string line;
  char byte = 0;
  for (;;) {
    pollfd ready{output, POLLIN, 0};
    if (poll(&ready, 1, kLimitMs) != 1 || read(output, &byte, 1) != 1 || byte == '\n') return line;
    line += byte;
  }
}

std::string ChildProgram::Ask(const std::string& bytes) {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t size = write(input, bytes.data() + sent, bytes.size() - sent);
    if (size <= 0) return "";
    sent += static_cast<std::size_t>(size);
  }
  return ReadLine();
}

void ChildProgram::Kill() {
  if (process <= 0) return;
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
  process = 0;
}

void ChildProgram::Freeze() {
  kill(process, SIGSTOP);
  waitpid(process, nullptr, WUNTRACED);  // returns when it has stopped
}

void ChildProgram::Thaw() { kill(process, SIGCONT); }

}  // namespace support
