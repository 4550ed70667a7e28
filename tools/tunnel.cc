#include "tools/tunnel.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "tools/environment.h"
#include "tools/failure.h"
#include "tools/interrupt.h"

namespace tool {
namespace {

constexpr int kNotStarted = 127;

// What has neither a meaning in an endpoint nor is too long for the path of a socket.
bool IsPlain(const std::string& folder) {
  constexpr std::size_t kMost = 60;
  return folder.size() <= kMost && folder[0] == '/' &&
         std::all_of(folder.begin(), folder.end(), [](unsigned char it) {
           return std::isalnum(it) != 0 || std::strchr("/._-", it) != nullptr;
         });
}

std::string MakeFolder() {
  for (const std::string& base : {Variable("XDG_RUNTIME_DIR"), std::string("/tmp")}) {
    std::string folder = base + "/networkgrpc.XXXXXX";
    if (!base.empty() && IsPlain(base) && mkdtemp(folder.data()) != nullptr) return folder;
  }
  throw Failure(ExitStatus::kFailed,
                std::string("cannot create a folder in /tmp: ") + std::strerror(errno));
}

// An endpoint as ssh names it: "host:port", or the path of a socket.
std::string Forwarded(const std::string& endpoint) {
  for (const std::string prefix : {"unix://", "unix:"})
    if (endpoint.rfind(prefix, 0) == 0) {
      std::string path = endpoint.substr(prefix.size());
      if (path[0] == '/' && path.find(':') == std::string::npos) return path;
    }
  for (const std::string prefix : {"dns:///", "dns:", "ipv4:", "ipv6:", ""}) {
    std::string rest = endpoint.substr(std::min(prefix.size(), endpoint.size()));
    if (endpoint.rfind(prefix, 0) == 0 && rest.find(':') != std::string::npos &&
        rest.find_first_of("/,") == std::string::npos)
      return rest;
  }
  throw Failure(ExitStatus::kUsage,
                "ssh cannot forward the endpoint '" + endpoint + "': use host:port or unix:/path");
}

// Its ends for reading and for writing.
std::array<int, 2> MakePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0)
    throw Failure(ExitStatus::kFailed, "cannot create a pipe for ssh");
  return ends;
}

// In the new process. It ends with its parent. A key of the terminal that interrupts this
// program must not cut the connection before a change in progress is reported. It stays in
// the terminal's foreground process group, where it can ask for a passphrase.
[[noreturn]] void RunSsh(char* const* arguments, int input, int output, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(kNotStarted);
  for (const int signal : {SIGINT, SIGQUIT, SIGHUP}) std::signal(signal, SIG_IGN);
  const int terminal = open("/dev/tty", O_RDONLY | O_CLOEXEC | O_NOCTTY);
  if (terminal < 0) setpgid(0, 0);  // there are no keys: what is meant for the group is not for ssh
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  execvp(arguments[0], arguments);
  _exit(kNotStarted);
}

}  // namespace

Tunnel::Tunnel(const Device& device, double seconds) : folder(MakeFolder()) {
  interrupt::BeforeEnd([this] { End(); });
  try {
    Start(device, seconds);
    AwaitReady(device.host);
  } catch (...) {
    interrupt::BeforeEnd({});
    End();
    throw;
  }
}

Tunnel::~Tunnel() {
  interrupt::BeforeEnd({});
  End();
}

void Tunnel::Start(const Device& device, double seconds) {
  const std::string network_manager =
      folder + kNetworkManager + ":" + Forwarded(device.network_manager);
  const std::string dapi = folder + kDapi + ":" + Forwarded(device.dapi);
  // Not through a connection that another ssh shares: that would keep the sockets.
  std::vector<std::string> words{
      "ssh",       "-T",
      "-S",        "none",
      "-o",        "ExitOnForwardFailure=yes",
      "-o",        "StreamLocalBindMask=0177",
      "-o",        "RemoteCommand=none",
      "-o",        "ConnectTimeout=" + std::to_string(static_cast<long>(std::ceil(seconds))),
      "-L",        network_manager,
      "-L",        dapi,
      device.host, "echo ready; exec cat"};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const auto [ssh_input, to_ssh] = MakePipe();
  const auto [from_ssh, ssh_output] = MakePipe();
  const pid_t parent = getpid();
  ssh = fork();
  if (ssh == 0) RunSsh(arguments.data(), ssh_input, ssh_output, parent);
  close(ssh_input);
  close(ssh_output);
  input = to_ssh;
  output = from_ssh;
  if (ssh < 0) throw Failure(ExitStatus::kFailed, "cannot start a process for ssh");
}

// A shell there may print something before.
void Tunnel::AwaitReady(const std::string& host) {
  std::string line;
  char character = 0;
  while (true) {
    const ssize_t size = read(output, &character, 1);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) break;
    if (character == '\n' && line == "ready") return;
    if (character == '\n')
      line.clear();
    else
      line += character;
  }
  const pid_t process = ssh.exchange(0);
  // A signal ends this process. NOLINTNEXTLINE(bugprone-infinite-loop)
  while (process == 0) pause();
  int status = 0;
  waitpid(process, &status, 0);
  const bool has_exited = WIFEXITED(status);
  const std::string why = has_exited && WEXITSTATUS(status) == kNotStarted
                              ? "ssh, or a shell there, could not be started (status 127)"
                          : has_exited
                              ? "ssh ended with status " + std::to_string(WEXITSTATUS(status))
                              : "ssh was ended by signal " + std::to_string(WTERMSIG(status));
  throw Failure(ExitStatus::kUnreachable,
                "cannot connect to '" + host + "': " + why + "; try 'ssh " + host + "'");
}

void Tunnel::End() noexcept {
  const pid_t process = ssh.exchange(0);
  if (input >= 0) close(std::exchange(input, -1));
  if (process > 0) {
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
  }
  if (output >= 0) close(std::exchange(output, -1));
  for (const char* socket : {kNetworkManager, kDapi}) unlink((folder + socket).c_str());
  rmdir(folder.c_str());
}

}  // namespace tool
