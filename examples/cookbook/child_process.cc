// Bound a call for certain: make it in a child process, which can be ended.
//
// usage: child_process SECONDS
//
// The connection closes with the child, so a waiting daemon learns that the caller is gone. For a
// change the outcome is then unknown: read back. This process itself never calls the library and
// has no threads, so it may fork at any time.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <iostream>
#include <string>

#include "DantegRPC.h"

namespace {

enum class Outcome { kDone, kFailed, kTimeLimit };

Outcome CallInChild(unsigned seconds, bool (*read)(std::string&), std::string& value) {
  std::array<int, 2> pipe_ends{};
  if (pipe(pipe_ends.data()) != 0) return Outcome::kFailed;
  const pid_t child = fork();
  if (child == 0) {
    alarm(seconds);  // SIGALRM ends the child
    std::string result;
    const bool done = read(result) && write(pipe_ends[1], result.data(), result.size()) >= 0;
    _exit(done ? 0 : 1);
  }
  close(pipe_ends[1]);
  std::array<char, 4096> buffer{};
  std::string received;
  for (ssize_t size = 0; (size = ::read(pipe_ends[0], buffer.data(), buffer.size())) > 0;)
    received.append(buffer.data(), static_cast<std::size_t>(size));
  close(pipe_ends[0]);
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return Outcome::kFailed;
  if (WIFSIGNALED(status)) return Outcome::kTimeLimit;
  if (status != 0) return Outcome::kFailed;
  value = received;
  return Outcome::kDone;
}

}  // namespace

int main(int argc, char** argv) {
  std::string name;
  const auto seconds = static_cast<unsigned>(argc == 2 ? std::atoi(argv[1]) : 5);
  const Outcome outcome = CallInChild(seconds, DantegRPC::GetName, name);
  if (outcome == Outcome::kDone) std::cout << "device name: " << name << '\n';
  if (outcome == Outcome::kFailed) std::cout << "the call failed\n";
  if (outcome == Outcome::kTimeLimit) std::cout << "no answer within " << seconds << " s\n";
  return static_cast<int>(outcome);
}
