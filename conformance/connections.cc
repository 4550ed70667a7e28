// Many calls, many connections, long connections, another daemon.
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <set>
#include <thread>

#include "conformance/check.h"
#include "tools/interrupt.h"
#include "tools/spawn.h"

namespace conformance {
namespace {

using Clock = std::chrono::steady_clock;
using tool::Daemon;

constexpr Daemon kNone = Daemon::kNone;  // for both
constexpr std::chrono::milliseconds kRetryPause(100);

std::string Seconds(Clock::duration time) {
  return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(time).count()) + " s";
}

Clock::duration ToDuration(double seconds) {
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

// --- Many ----------------------------------------------------------------------

void ExpectSameReplies(Session& it, std::size_t calls, const std::vector<Channel>& channels) {
  const std::string method = it.AnyRead();
  const Json expected = it.Read(method);
  for (const Reply& reply : it.SendAtOnce(method, calls, channels))
    Expect(reply.IsOk() && reply.json == expected,
           "one of the calls was not answered like one alone");
}

void ConcurrentCalls(Session& it) { ExpectSameReplies(it, 100, {it.Connect(it.daemon)}); }

void ManyConnections(Session& it) {
  const auto deadline = std::chrono::system_clock::now() + ToDuration(it.limits.timeout);
  std::vector<Channel> channels(20);
  for (Channel& channel : channels) {
    channel = it.Connect(it.daemon);
    // gRPC 1.51 takes a connection for failed now and then, and makes another: no fault of the
    // daemon's.
    channel->WaitForConnected(deadline);
  }
  ExpectSameReplies(it, 2 * channels.size(), channels);
}

// --- Where it listens ----------------------------------------------------------

// "localhost:PORT", "127.0.0.1:PORT" or "[::1]:PORT" of this machine.
struct Local {
  std::string host;
  int port = 0;
};

Local LocalEndpoint(const Session& it) {
  const std::string endpoint = tool::EndpointSetting(it.daemon).Value();
  const std::size_t colon = endpoint.rfind(':');
  const std::string host = endpoint.substr(0, colon);
  if (colon == std::string::npos ||
      std::set<std::string>{"localhost", "127.0.0.1", "[::1]"}.count(host) == 0)
    throw Skipped{"the endpoint is no port of this machine's loopback addresses"};
  return {host, std::atoi(endpoint.c_str() + colon + 1)};
}

// A socket of a loopback address; -1 if it cannot be bound to the port, 0 for any.
int Bind(int family, int port) {
  const int descriptor = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int yes = 1;
  setsockopt(descriptor, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes);
  sockaddr_in6 in6{};
  in6.sin6_family = AF_INET6;
  in6.sin6_addr = in6addr_loopback;
  in6.sin6_port = htons(static_cast<std::uint16_t>(port));
  sockaddr_in in4{};
  in4.sin_family = AF_INET;
  in4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  in4.sin_port = in6.sin6_port;
  const bool is6 = family == AF_INET6;
  const auto* address = is6 ? reinterpret_cast<sockaddr*>(&in6) : reinterpret_cast<sockaddr*>(&in4);
  if (descriptor >= 0 &&
      bind(descriptor, address, static_cast<socklen_t>(is6 ? sizeof in6 : sizeof in4)) == 0)
    return descriptor;
  close(descriptor);
  return -1;
}

bool CanBind(int family, int port) {
  const int descriptor = Bind(family, port);
  if (descriptor >= 0) close(descriptor);
  return descriptor >= 0;
}

Reply ReadAt(Session& it, const std::string& endpoint) {
  return it.SendBytes(it.AnyRead(), "", it.Connect(it.daemon, endpoint));
}

std::string At(bool is_v6, int port) {
  return (is_v6 ? "[::1]:" : "127.0.0.1:") + std::to_string(port);
}

void AnswersAt(Session& it, bool is_v6) {
  const Local local = LocalEndpoint(it);
  if (local.host != "localhost") throw Skipped{"the endpoint is not localhost:PORT"};
  if (is_v6 && !CanBind(AF_INET6, 0)) throw Skipped{"this machine has no IPv6"};
  Expect(ReadAt(it, At(is_v6, local.port)).IsOk(),
         "the daemon does not answer at " + At(is_v6, local.port));
}

// A socket that is bound, but does not listen, gets no connections.
void ExclusivePort(Session& it) {
  const Local local = LocalEndpoint(it);
  for (const bool is_v6 : {false, true}) {
    if (local.host != "localhost" && is_v6 != (local.host == "[::1]")) continue;
    if (!ReadAt(it, At(is_v6, local.port)).IsOk()) continue;  // see loopback
    Expect(!CanBind(is_v6 ? AF_INET6 : AF_INET, local.port),
           "another process of this user can listen on " + At(is_v6, local.port) + ", too");
  }
}

// --- Long ----------------------------------------------------------------------

// The connections to both daemons are idle at the same time.
void Keepalive(Session& it) {
  if (it.limits.keepalive == 0) throw Skipped{"--keepalive-seconds is 0"};
  if (it.idle.empty()) {
    it.idle_since = Clock::now();
    for (const Daemon daemon : it.daemons) {
      it.idle[daemon] = it.Connect(daemon);
      it.idle[daemon]->WaitForConnected(std::chrono::system_clock::now() +
                                        ToDuration(it.limits.timeout));
    }
  }
  grpc::Channel& channel = *it.idle[it.daemon];
  const auto end = it.idle_since + ToDuration(it.limits.keepalive);
  while (true) {
    if (tool::interrupt::Signal() != 0) throw Interrupted{};
    const auto now = Clock::now();
    Expect(channel.GetState(false) == GRPC_CHANNEL_READY,
           "the connection was closed within " + Seconds(now - it.idle_since));
    if (now >= end) break;
    std::this_thread::sleep_for(kRetryPause);
  }
  Expect(it.SendBytes(it.AnyRead(), "", it.idle[it.daemon]).IsOk(), "the call after it failed");
}

// --- Another -------------------------------------------------------------------

// Runs the command before the first of these checks.
void Restart(Session& it) {
  if (it.has_restarted) return;
  it.has_restarted = true;
  for (const Daemon daemon : it.daemons)
    if (daemon == Daemon::kNetworkManager)
      it.interfaces = it.Member("GetAvailableInterfaces", "interfaces");
  // Its output is not that of this program.
  const pid_t process =
      tool::Spawn({"sh", {{STDOUT_FILENO, STDERR_FILENO}}}, {"sh", "-c", it.limits.restart});
  int status = 0;
  waitpid(process, &status, 0);
  Expect(status == 0, "the command of --restart failed");
}

void AnswersAgain(Session& it) {
  Restart(it);
  constexpr auto kLongest = std::chrono::seconds(30);
  const std::string method = it.AnyRead();
  for (const auto end = Clock::now() + kLongest; !it.Send(method).IsOk();) {
    Expect(Clock::now() < end, "the daemon did not answer within " + Seconds(kLongest));
    std::this_thread::sleep_for(kRetryPause);
  }
}

void SameInterfaces(Session& it) {
  AnswersAgain(it);
  const Json now = it.Member("GetAvailableInterfaces", "interfaces");
  for (const Json& before : it.interfaces)
    for (const Json& interface : now)
      Expect(interface["name"] != before["name"] || interface["id"] == before["id"],
             "interface " + before["name"].dump() + " has another id now");
}

}  // namespace

Checks Connections() {
  constexpr Effect kReads = Effect::kReads;
  Checks checks = OfBoth({
      {"calls.Concurrent", kNone, kReads, "100 calls at once are answered like one alone",
       "handlers run concurrently: protect what they share", ConcurrentCalls},
      {"calls.Connections", kNone, kReads, "40 calls over 20 connections are answered",
       "every program has a connection of its own; raise the limit of file descriptors",
       ManyConnections},
      {"loopback.Ipv4", kNone, kReads, "A daemon at localhost answers at 127.0.0.1",
       "listen on both loopback addresses", [](Session& it) { AnswersAt(it, false); }},
      {"loopback.Ipv6", kNone, kReads, "A daemon at localhost answers at [::1]",
       "listen on both loopback addresses: clients try [::1] first",
       [](Session& it) { AnswersAt(it, true); }},
      {"port.Exclusive", kNone, kReads, "No other process can listen on the daemon's port",
       "switch SO_REUSEPORT off: GRPC_ARG_ALLOW_REUSEPORT 0", ExclusivePort},
      {"keepalive.Idle", kNone, kReads,
       "An idle connection with the library's keepalive stays open",
       "permit a ping every 10 s without calls", Keepalive},
      {"restart.Answers", kNone, Effect::kRestarts, "After a restart, the daemon answers again",
       "listen on the same endpoint; exit only when the port is free", AnswersAgain},
  });
  checks.push_back({"restart.InterfaceIds", Daemon::kNetworkManager, Effect::kRestarts,
                    "After a restart, each interface has the same id",
                    "applications look the ids up once: derive them from the hardware",
                    SameInterfaces});
  return checks;
}

}  // namespace conformance
