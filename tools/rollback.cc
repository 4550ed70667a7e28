#include "tools/rollback.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>

#include "tools/call.h"
#include "tools/pending.h"

namespace tool {
namespace {

constexpr int kMostBytes = 65536;
constexpr char kArm = 'A';    // followed by milliseconds, a space, the configuration
constexpr char kLimit = 'L';  // followed by milliseconds
constexpr char kKeep = 'K';   // alone
constexpr const char* kDone = "done";
constexpr const char* kKept = "kept";

std::string ReceiveFrom(int socket) {
  std::string message(kMostBytes, '\0');
  const ssize_t size = recv(socket, message.data(), message.size(), 0);
  message.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  return message;
}

std::string Milliseconds(double seconds) {
  return std::to_string(static_cast<long long>(seconds * 1000));
}

void SendTo(int socket, const std::string& message) {
  send(socket, message.data(), message.size(), MSG_NOSIGNAL);
}

}  // namespace

// --- networkgrpc ----------------------------------------------------------------

Rollback::Rollback() {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
    throw Failure(ExitStatus::kFailed, "cannot create a socket for the rollback process");
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, ends[1], STDIN_FILENO);
  // Whoever reads networkgrpc's output to its end must not wait for this process.
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK);
  std::string name = "networkgrpc";
  std::string command = kRollbackCommand;
  std::array<char*, 3> arguments{name.data(), command.data(), nullptr};
  pid_t child = 0;
  const int error =
      posix_spawn(&child, "/proc/self/exe", &files, &attributes, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  posix_spawnattr_destroy(&attributes);
  close(ends[1]);
  socket = ends[0];
  if (error != 0 || Receive() != kDone)
    throw Failure(ExitStatus::kFailed, "cannot start the rollback process; nothing was changed");
}

Rollback::~Rollback() { close(socket); }

void Rollback::Send(const std::string& message) const { SendTo(socket, message); }

std::string Rollback::Receive() const { return ReceiveFrom(socket); }

void Rollback::Arm(const std::string& configuration, double seconds) {
  Send(kArm + Milliseconds(seconds) + " " + configuration);
  if (Receive() != kDone)
    throw Failure(ExitStatus::kFailed, "the rollback process has ended; nothing was changed");
}

void Rollback::Restart(double seconds) { Send(kLimit + Milliseconds(seconds)); }

bool Rollback::Keep() {
  Send(std::string(1, kKeep));
  outcome = Receive();
  return outcome == kKept;
}

bool Rollback::Restore() {
  shutdown(socket, SHUT_WR);
  if (outcome.empty()) outcome = Receive();
  return outcome == kDone;
}

// --- The rollback process -------------------------------------------------------

namespace {

constexpr int kAttempts = 30;
constexpr int kPauseMs = 1000;  // the network may be reloading

using Clock = std::chrono::steady_clock;

bool RestoreOnce(const std::string& configuration) {
  nm::InterfaceConfig config;
  if (!config.ParseFromString(configuration)) return false;
  try {
    Change(rpc::kSetNetworkConfig, "restore the configuration", config);
    ReloadNetwork();
    return true;
  } catch (const Failure&) {
    return false;
  }
}

bool RestoreWithRetries(const std::string& configuration) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (RestoreOnce(configuration)) return true;
    poll(nullptr, 0, kPauseMs);
  }
  return false;
}

// True if told to keep the new configuration before the limit; false at the limit
// and if networkgrpc has ended.
bool IsKept(int limit_ms) {
  auto end = Clock::now() + std::chrono::milliseconds(limit_ms);
  while (true) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0) return false;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, static_cast<int>(left)) <= 0) continue;
    const std::string message = ReceiveFrom(STDIN_FILENO);
    if (message.empty() || message[0] != kLimit) return message == std::string(1, kKeep);
    end = Clock::now() + std::chrono::milliseconds(std::stoi(message.substr(1)));
  }
}

}  // namespace

int RunRollback() {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE}) std::signal(signal, SIG_IGN);
  SendTo(STDIN_FILENO, kDone);
  const std::string armed = ReceiveFrom(STDIN_FILENO);
  if (armed.empty() || armed[0] != kArm) return 0;  // nothing was changed
  std::size_t digits = 0;
  const int limit_ms = std::stoi(armed.substr(1), &digits);
  const std::string configuration = armed.substr(digits + 2);
  SendTo(STDIN_FILENO, kDone);
  if (IsKept(limit_ms)) {
    SendTo(STDIN_FILENO, kKept);
    return 0;
  }
  const bool restored = RestoreWithRetries(configuration);
  if (!restored)
    syslog(LOG_DAEMON | LOG_ERR,
           "networkgrpc: cannot restore the previous configuration of an interface");
  SendTo(STDIN_FILENO, restored ? kDone : "failed");
  return restored ? 0 : 1;
}

}  // namespace tool
