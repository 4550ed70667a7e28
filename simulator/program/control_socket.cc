#include "simulator/program/control_socket.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace simulator {
namespace {

// A silent peer must not keep the others waiting.
constexpr timeval kServerLimit{2, 0};
constexpr timeval kClientLimit{20, 0};
constexpr std::size_t kLongestRequest = 65536;
constexpr std::size_t kLongestAnswer = std::size_t{256} * 1024 * 1024;

[[noreturn]] void Throw(const std::string& what, const std::string& path, const std::string& why) {
  throw std::runtime_error("cannot " + what + " control socket " + path + ": " + why);
}

[[noreturn]] void Throw(const std::string& what, const std::string& path) {
  Throw(what, path, std::strerror(errno));
}

sockaddr_un AddressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path)
    Throw("use", path, "its path must have 1 to 107 bytes");
  std::memcpy(static_cast<char*>(address.sun_path), path.data(), path.size());
  return address;
}

// A descriptor that is closed with the object.
class Socket {
 public:
  Socket() : file(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
  explicit Socket(int accepted) : file(accepted) {}
  ~Socket() {
    if (file >= 0) close(file);
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  int File() const { return file; }
  int Release() { return std::exchange(file, -1); }

 private:
  int file;
};

bool Connect(const Socket& socket, const sockaddr_un& address) {
  return connect(socket.File(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

void SetLimit(const Socket& socket, const timeval& limit) {
  setsockopt(socket.File(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  setsockopt(socket.File(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

bool SendLine(const Socket& socket, std::string line) {
  line += '\n';
  std::size_t sent = 0;
  while (sent < line.size()) {
    const ssize_t size = send(socket.File(), line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return false;
    sent += static_cast<std::size_t>(size);
  }
  return true;
}

// False if the peer closed or the time limit passed before a newline, or if the line
// is too long.
bool ReceiveLine(const Socket& socket, std::size_t longest, std::string& line) {
  std::array<char, 4096> part{};
  while (line.size() <= longest) {
    const ssize_t size = recv(socket.File(), part.data(), part.size(), 0);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return false;
    line.append(part.data(), static_cast<std::size_t>(size));
    if (line.back() != '\n') continue;
    line.pop_back();
    return true;
  }
  return false;
}

void MakePrivateFolder(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) Throw("create the folder of", path);
  struct stat found {};
  if (stat(folder.c_str(), &found) != 0) Throw("use the folder of", path);
  if (found.st_uid != geteuid() || (found.st_mode & 077U) != 0)
    Throw("use", path, "others have access to its folder; use a folder of yours with mode 0700");
}

// Removes the socket of a simulator that was killed.
void RemoveStale(const std::string& path, const sockaddr_un& address) {
  const Socket socket;
  if (Connect(socket, address)) Throw("listen on", path, "another simulator listens on it");
  struct stat found {};
  if (errno == ECONNREFUSED && stat(path.c_str(), &found) == 0 && S_ISSOCK(found.st_mode))
    unlink(path.c_str());
}

}  // namespace

ControlSocket::ControlSocket(std::string wanted_path) : path(std::move(wanted_path)) {
  const sockaddr_un address = AddressOf(path);
  MakePrivateFolder(path);
  RemoveStale(path, address);
  Socket socket;
  const mode_t mask = umask(0177);
  const int bound =
      bind(socket.File(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  const int error = errno;
  umask(mask);
  errno = error;
  if (bound != 0 || listen(socket.File(), SOMAXCONN) != 0) Throw("listen on", path);
  ending = eventfd(0, EFD_CLOEXEC);
  if (ending < 0) Throw("listen on", path);
  listening = socket.Release();
}

ControlSocket::~ControlSocket() {
  const std::uint64_t one = 1;
  if (thread.joinable() && write(ending, &one, sizeof one) == sizeof one) thread.join();
  close(ending);
  close(listening);
  unlink(path.c_str());
}

void ControlSocket::Serve(std::function<std::string(const std::string& request)> answer) {
  thread = std::thread([this, answer = std::move(answer)] { Run(answer); });
}

void ControlSocket::Run(const std::function<std::string(const std::string&)>& answer) const {
  std::array<pollfd, 2> awaited{{{listening, POLLIN, 0}, {ending, POLLIN, 0}}};
  while (true) {
    if (poll(awaited.data(), awaited.size(), -1) < 0 && errno != EINTR) return;
    if (awaited[1].revents != 0) return;
    const Socket client(accept4(listening, nullptr, nullptr, SOCK_CLOEXEC));
    if (client.File() < 0) continue;
    SetLimit(client, kServerLimit);
    std::string request;
    if (ReceiveLine(client, kLongestRequest, request)) SendLine(client, answer(request));
  }
}

std::string AskControl(const std::string& path, const std::string& request) {
  const Socket socket;
  if (!Connect(socket, AddressOf(path)))
    Throw("connect to", path,
          std::string(std::strerror(errno)) + "; start a simulator with --control");
  SetLimit(socket, kClientLimit);
  std::string answer;
  if (!SendLine(socket, request) || !ReceiveLine(socket, kLongestAnswer, answer))
    Throw("use", path, "no answer");
  return answer;
}

}  // namespace simulator
