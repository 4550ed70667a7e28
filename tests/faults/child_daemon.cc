#include "tests/faults/child_daemon.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace faults {

ReservedPort::ReservedPort() : descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const int on = 1;
  setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  if (bind(descriptor, generic, size) != 0 || getsockname(descriptor, generic, &size) != 0)
    throw std::runtime_error("cannot reserve a loopback port");
  number = ntohs(address.sin_port);
}

ReservedPort::~ReservedPort() { close(descriptor); }

ChildDaemon::ChildDaemon(int port, const std::string& host)
    : address(host + ":" + std::to_string(port)) {
  std::array<int, 2> down{};
  std::array<int, 2> up{};
  if (pipe2(down.data(), O_CLOEXEC) != 0 || pipe2(up.data(), O_CLOEXEC) != 0)
    throw std::runtime_error("cannot create pipes");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, down[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, up[1], STDOUT_FILENO);
  // Standard error must contain only what the library prints.
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::string program = CHILD_DAEMON_PROGRAM;
  const std::array<char*, 3> command = {program.data(), address.data(), nullptr};
  const int failure =
      posix_spawn(&process, CHILD_DAEMON_PROGRAM, &actions, nullptr, command.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(down[0]);
  close(up[1]);
  commands = fdopen(down[1], "w");
  answers = fdopen(up[0], "r");
  if (failure != 0) throw std::runtime_error("cannot run " + program);
}

ChildDaemon::~ChildDaemon() {
  Kill();
  std::fclose(commands);
  std::fclose(answers);
}

void ChildDaemon::Serve() {
  if (Ask("serve\n") != "ready\n") throw std::runtime_error("cannot start a daemon on " + address);
}

void ChildDaemon::Answer(const support::Request& request, const std::string& reply) {
  Script("answer", request, reply);
}

void ChildDaemon::Hang(const support::Request& request) { Script("hang", request, ""); }

void ChildDaemon::Script(const std::string& command, const support::Request& request,
                         const std::string& reply) {
  Ask(command + ' ' + request.path + ' ' + std::to_string(request.bytes.size()) + ' ' +
      std::to_string(reply.size()) + '\n' + request.bytes + reply);
}

bool ChildDaemon::WaitForRequests(std::size_t count) {
  return Ask("wait " + std::to_string(count) + '\n') == "yes\n";
}

void ChildDaemon::ForgetRequests() { Ask("forget\n"); }

void ChildDaemon::Kill() {
  if (process <= 0) return;
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
  process = 0;
}

void ChildDaemon::Freeze() {
  kill(process, SIGSTOP);
  waitpid(process, nullptr, WUNTRACED);  // returns when it has stopped
}

void ChildDaemon::Thaw() { kill(process, SIGCONT); }

std::string ChildDaemon::Ask(const std::string& command) {
  std::fwrite(command.data(), 1, command.size(), commands);
  std::fflush(commands);
  std::array<char, 64> line{};
  return std::fgets(line.data(), line.size(), answers) != nullptr ? line.data() : "";
}

}  // namespace faults
