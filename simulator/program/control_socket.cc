#include "simulator/program/control_socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

#include "simulator/unix_socket.h"

namespace simulator {
namespace {

using SteadyClock = std::chrono::steady_clock;

// How long one client may take to send its request, and to read the answer.
constexpr std::chrono::seconds kRequestLimit{2};
constexpr std::chrono::seconds kAnswerLimit{20};
constexpr std::size_t kMostClients = 256;  // at once; others wait until they are accepted

constexpr std::size_t kLongestRequest = std::size_t{64} * 1024 * 1024;  // with a state
constexpr std::size_t kLongestAnswer = std::size_t{256} * 1024 * 1024;

constexpr const char* kWhat = "control socket";

[[noreturn]] void Throw(const std::string& what, const std::string& path, const std::string& why) {
  throw std::runtime_error("cannot " + what + ' ' + kWhat + ' ' + path + ": " + why);
}

[[noreturn]] void Throw(const std::string& what, const std::string& path) {
  Throw(what, path, std::strerror(errno));
}

bool SendLine(const Descriptor& socket, std::string line) {
  line += '\n';
  std::size_t sent = 0;
  while (sent < line.size()) {
    const ssize_t size = send(socket.Get(), line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return false;
    sent += static_cast<std::size_t>(size);
  }
  return true;
}

// False if the peer closed or the time limit passed before a newline, or if the line
// is too long.
bool ReceiveLine(const Descriptor& socket, std::size_t longest, std::string& line) {
  std::array<char, 4096> part{};
  while (line.size() <= longest) {
    const ssize_t size = recv(socket.Get(), part.data(), part.size(), 0);
    if (size < 0 && errno == EINTR) continue;
    if (size == 0) errno = ECONNRESET;
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

}  // namespace

// One connection: receives a line, then sends the answer.
class ControlSocket::Client {
 public:
  explicit Client(Descriptor accepted) : socket(std::move(accepted)) {}

  pollfd Awaited() const {
    return {socket.Get(), static_cast<short>(answer.empty() ? POLLIN : POLLOUT), 0};
  }
  SteadyClock::time_point Deadline() const { return deadline; }

  /// Receives or sends what is possible without waiting. False when the client is
  /// served or cannot be.
  bool Continue(const Answer& to) {
    if (waits) return false;  // it sends more, or is gone
    return answer.empty() ? Receive(to) : Send();
  }
  bool Waits() const { return waits; }

  /// Answers the request, or waits for Retry.
  bool Ask(const Answer& to) {
    const std::optional<std::string> now = to(request);
    waits = !now.has_value();
    deadline = waits ? SteadyClock::time_point::max() : SteadyClock::now() + kAnswerLimit;
    if (waits) return true;
    answer = *now + '\n';
    return Send();
  }

 private:
  bool Receive(const Answer& to) {
    std::array<char, 4096> part{};
    const ssize_t size = recv(socket.Get(), part.data(), part.size(), 0);
    if (size < 0) return errno == EAGAIN || errno == EINTR;
    request.append(part.data(), static_cast<std::size_t>(size));
    const std::size_t end = request.find('\n', request.size() - static_cast<std::size_t>(size));
    if (end == std::string::npos) return size > 0 && request.size() <= kLongestRequest;
    request.resize(end);
    return Ask(to);
  }

  bool Send() {
    const ssize_t size =
        send(socket.Get(), answer.data() + sent, answer.size() - sent, MSG_NOSIGNAL);
    if (size < 0) return errno == EAGAIN || errno == EINTR;
    sent += static_cast<std::size_t>(size);
    return sent < answer.size();
  }

  Descriptor socket;
  SteadyClock::time_point deadline = SteadyClock::now() + kRequestLimit;
  std::string request;
  std::string answer;  // empty until there is one
  bool waits = false;  // for it, with a complete request
  std::size_t sent = 0;
};

ControlSocket::ControlSocket(std::string wanted_path)
    : path(std::move(wanted_path)), acceptor("control socket " + path) {
  MakePrivateFolder(path);
  listening = ListenOnUnixSocket(path, 0600, kWhat);
}

void ControlSocket::Stop() {
  Signal(ending);
  if (thread.joinable()) thread.join();
}

ControlSocket::~ControlSocket() {
  Stop();
  unlink(path.c_str());
}

void ControlSocket::Serve(Answer answer) {
  thread = std::thread([this, answer = std::move(answer)] { Run(answer); });
}

void ControlSocket::Run(const Answer& answer) {
  std::list<Client> clients;
  while (true) {
    const bool is_ready = acceptor.IsReady();
    std::vector<pollfd> awaited{{ending.Get(), POLLIN, 0}, {retrying.Get(), POLLIN, 0}};
    for (const Client& client : clients) awaited.push_back(client.Awaited());
    const bool accepts = is_ready && clients.size() < kMostClients;
    if (accepts) awaited.push_back({listening.Get(), POLLIN, 0});

    if (poll(awaited.data(), awaited.size(), TimeLimit(clients, is_ready)) < 0) continue;
    if (awaited[0].revents != 0) return;
    std::uint64_t times = 0;
    const bool retries = awaited[1].revents != 0 && read(retrying.Get(), &times, sizeof times) > 0;
    Continue(clients, awaited.data() + 2, retries, answer);
    if (!accepts || awaited.back().revents == 0) continue;
    Descriptor accepted = acceptor.Accept(listening.Get());
    if (accepted.IsOpen()) clients.emplace_back(std::move(accepted));
  }
}

// With what poll found about each of them. Those that are done are removed.
void ControlSocket::Continue(std::list<Client>& clients, const pollfd* found, bool retries,
                             const Answer& answer) {
  for (auto client = clients.begin(); client != clients.end(); ++found) {
    bool is_open = found->revents == 0 || client->Continue(answer);
    if (is_open && retries && client->Waits()) is_open = client->Ask(answer);
    const bool stays = is_open && SteadyClock::now() < client->Deadline();
    client = stays ? std::next(client) : clients.erase(client);
  }
}

// In milliseconds, for poll.
int ControlSocket::TimeLimit(const std::list<Client>& clients, bool is_ready) {
  using std::chrono::milliseconds;
  if (clients.empty()) return is_ready ? -1 : Acceptor::kRetryMs;
  auto first = SteadyClock::time_point::max();
  for (const Client& client : clients) first = std::min(first, client.Deadline());
  if (!is_ready) first = std::min(first, SteadyClock::now() + milliseconds(Acceptor::kRetryMs));
  if (first == SteadyClock::time_point::max()) return -1;
  const auto left = std::chrono::ceil<milliseconds>(first - SteadyClock::now());
  return static_cast<int>(std::max(left, milliseconds(0)).count());
}

std::optional<std::string> AskControl(const std::string& path, const std::string& request,
                                      std::chrono::milliseconds limit) {
  const Descriptor socket = ConnectToUnixSocket(path, kWhat);
  if (!socket.IsOpen())
    Throw("connect to", path,
          std::string(std::strerror(errno)) + "; start a simulator with --control");
  const timeval time{limit.count() / 1000, limit.count() % 1000 * 1000};
  setsockopt(socket.Get(), SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
  setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
  std::string answer;
  if (SendLine(socket, request) && ReceiveLine(socket, kLongestAnswer, answer)) return answer;
  if (errno == EAGAIN) return std::nullopt;
  Throw("use", path, "no answer");
}

}  // namespace simulator
