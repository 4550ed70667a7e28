#include "simulator/program/background.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "simulator/program/command.h"

namespace simulator {
namespace {

[[noreturn]] void Throw(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno));
}

std::string ReadAll(int file) {
  std::array<char, 4096> part{};
  std::string all;
  for (ssize_t size = 0; (size = read(file, part.data(), part.size())) != 0;) {
    if (size > 0) all.append(part.data(), static_cast<std::size_t>(size));
    if (size < 0 && errno != EINTR) break;
  }
  return all;
}

int StatusOf(pid_t process) {
  int ending = 0;
  while (waitpid(process, &ending, 0) < 0 && errno == EINTR) {
  }
  return ExitStatusOf(ending);
}

bool IsPipe(int file) {
  struct stat found {};
  return fstat(file, &found) == 0 && (S_ISFIFO(found.st_mode) || S_ISSOCK(found.st_mode));
}

// What the standard output of a process is, such as "pipe:[4711]".
std::string Target(const std::string& process) {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/" + process + "/fd/1", error);
}

// 0 if there is no such process.
pid_t ParentOf(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  pid_t parent = 0;
  for (std::string word; status >> word;)
    if (word == "PPid:") status >> parent;
  return parent;
}

// In single quotes.
std::string Quoted(Shell shell, const std::string& value) {
  std::string quoted = "'";
  for (const char character : value) {
    if (character == '\'') {
      quoted += shell == Shell::kFish ? "\\'" : "'\\''";
    } else {
      quoted += shell == Shell::kFish && character == '\\' ? "\\\\" : std::string(1, character);
    }
  }
  return quoted + '\'';
}

}  // namespace

std::optional<int> Background::Start() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) Throw("cannot make a pipe");
  const Descriptor from_second(ends[0]);
  pipe = Descriptor(ends[1]);
  const pid_t second = fork();
  if (second < 0) Throw("cannot start a process in the background");
  if (second == 0) {
    setsid();
    return std::nullopt;
  }
  pipe.Close();
  const std::string lines = ReadAll(from_second.Get());
  if (lines.empty()) return StatusOf(second);
  if (!(std::cout << lines << std::flush)) {
    kill(second, SIGTERM);  // nobody knows it
    Throw("cannot print the endpoints: standard output");
  }
  return EXIT_SUCCESS;
}

void Background::Ready(const std::string& lines) {
  const Descriptor nothing(open("/dev/null", O_RDWR | O_CLOEXEC));
  for (const int file : {STDIN_FILENO, STDOUT_FILENO}) dup2(nothing.Get(), file);
  if (IsPipe(STDERR_FILENO)) dup2(nothing.Get(), STDERR_FILENO);
  if (write(pipe.Get(), lines.data(), lines.size()) < 0)
    throw std::runtime_error("the process that started this one has ended");
  pipe.Close();
}

std::string ExportLines(Shell shell, const std::vector<std::string>& variables,
                        const std::string& end) {
  const bool is_fish = shell == Shell::kFish;
  std::string lines;
  for (const std::string& variable : variables) {
    const std::size_t equals = variable.find('=');
    lines += (is_fish ? "set -gx " : "export ") + variable.substr(0, equals) +
             (is_fish ? " " : "=") + Quoted(shell, variable.substr(equals + 1)) + ";\n";
  }
  lines += (is_fish ? "set -g simulator_pid " : "simulator_pid=") + std::to_string(getpid()) +
           ";\n# The simulator ends with " + end + "; before, with: kill $simulator_pid\n";
  return lines;
}

pid_t CallingShell() {
  const std::string output = Target("self");
  pid_t process = getppid();
  if (output.compare(0, 5, "pipe:") != 0) return process;
  while (process > 1 && Target(std::to_string(process)) == output) process = ParentOf(process);
  return process;
}

Descriptor WatchProcess(pid_t process) {
  // The header of pidfd_open has no linkage of C in glibc 2.36.
  Descriptor watched(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
  if (!watched.IsOpen()) Throw("cannot watch process " + std::to_string(process));
  return watched;
}

}  // namespace simulator
