#include "simulator/program/command.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <utility>

#include "simulator/program/program_options.h"
#include "terminal/printable.h"

namespace simulator {
namespace {

constexpr int kCannotRun = 126;
constexpr int kNotFound = 127;

std::vector<char*> Pointers(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& string : strings) pointers.push_back(string.data());
  pointers.push_back(nullptr);
  return pointers;
}

// "name=" of "name=value".
std::string NameOf(const std::string& variable) {
  return variable.substr(0, variable.find('=') + 1);
}

// True if the process has ended, with its exit status.
bool HasEnded(pid_t process, int& status) {
  int ending = 0;
  if (waitpid(process, &ending, WNOHANG) != process) return false;
  status = ExitStatusOf(ending);
  return true;
}

}  // namespace

int ExitStatusOf(int ending) {
  constexpr int kSignalled = 128;
  return WIFEXITED(ending) ? WEXITSTATUS(ending) : kSignalled + WTERMSIG(ending);
}

Command::Command(std::vector<std::string> name_and_arguments)
    : words(std::move(name_and_arguments)) {
  for (char** variable = environ; *variable != nullptr; ++variable)
    environment.emplace_back(*variable);
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  sigemptyset(&not_ignored);
  for (const int signal : {SIGPIPE, SIGXFSZ}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_DFL) sigaddset(&not_ignored, signal);
  }
}

int Command::Start(const std::vector<std::string>& variables, pid_t& process) const {
  std::vector<std::string> arguments = words;
  std::vector<std::string> all = variables;
  for (const std::string& inherited : environment)
    if (std::none_of(variables.begin(), variables.end(), [&](const std::string& variable) {
          return NameOf(variable) == NameOf(inherited);
        }))
      all.push_back(inherited);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  posix_spawnattr_setsigmask(&attributes, &blocked);
  posix_spawnattr_setsigdefault(&attributes, &not_ignored);
  const int error = posix_spawnp(&process, words.front().c_str(), nullptr, &attributes,
                                 Pointers(arguments).data(), Pointers(all).data());
  posix_spawnattr_destroy(&attributes);
  return error;
}

int Command::Run(const std::vector<std::string>& variables, sigset_t awaited) const {
  sigaddset(&awaited, SIGCHLD);
  pid_t process = -1;
  const int error = Start(variables, process);
  if (error != 0) {
    std::cerr << kProgramName << ": cannot run " << terminal::Printable(words.front()) << ": "
              << std::strerror(error) << '\n';
    return error == ENOENT ? kNotFound : kCannotRun;
  }
  int status = 0;
  while (!HasEnded(process, status)) {
    siginfo_t info{};
    const int signal = sigwaitinfo(&awaited, &info);
    if (signal > 0 && signal != SIGCHLD && info.si_code <= 0) kill(process, signal);
  }
  return status;
}

}  // namespace simulator
