// Runs the rounds and compares how each process ended with the known endings.
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include "support/functions.h"
#include "tests/hostile_http2/hostile_peer.h"

namespace {

using support::Function;

constexpr const char* kDoesNotEnd = "does not end";
// The connection is closed by then, so milliseconds are enough on an idle machine.
constexpr int kEndLimitMs = 10000;

struct Options {
  unsigned seed = 1;
  unsigned rounds = 300;
  unsigned first = 0;
  std::string known;
  std::string one_call;
};

// The program one_call, its standard error in a file of its own.
class CallingProcess {
 public:
  CallingProcess(const std::string& program, std::size_t function)
      : errors(memfd_create("errors", MFD_CLOEXEC)) {
    std::string path = program;
    std::string number = std::to_string(function);
    char* arguments[] = {path.data(), number.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    const int failure = posix_spawn(&child, path.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error("cannot run " + program);
  }
  ~CallingProcess() { close(errors); }

  CallingProcess(const CallingProcess&) = delete;
  CallingProcess& operator=(const CallingProcess&) = delete;

  /// How it ended: empty for exit status 0, otherwise the reason and its last line.
  std::string End() {
    const int handle = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    pollfd ended{handle, POLLIN, 0};
    const bool in_time = poll(&ended, 1, kEndLimitMs) == 1;
    close(handle);
    if (!in_time) kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (!in_time) return kDoesNotEnd;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return "";
    const std::string how = WIFSIGNALED(status)
                                ? std::string(strsignal(WTERMSIG(status)))
                                : "exit status " + std::to_string(WEXITSTATUS(status));
    return how + ": " + LastLine();
  }

 private:
  // The last line of standard error that neither the library nor an emulator printed,
  // without time and thread.
  std::string LastLine() const {
    std::string text(65536, '\0');
    const ssize_t size = pread(errors, text.data(), text.size(), 0);
    text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    std::istringstream stream(text);
    std::string last;
    for (std::string line; std::getline(stream, line);)
      if (line.rfind("libNetworkgRPC: ", 0) != 0 && line.rfind("qemu: ", 0) != 0) last = line;
    static const std::regex stamp("^[EID][0-9]{4} [0-9:.]+ +[0-9]+ ");
    return std::regex_replace(last, stamp, "");
  }

  int errors;
  pid_t child = 0;
};

// One regular expression per line; # starts a comment.
std::vector<std::regex> ReadKnownEndings(const std::string& path) {
  std::vector<std::regex> known;
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  for (std::string line; std::getline(file, line);)
    if (!line.empty() && line[0] != '#') known.emplace_back(line);
  return known;
}

std::deque<std::string> GoodReplies(const support::Device& device, const Function& function) {
  std::deque<std::string> replies;
  for (const support::Step& step : function.steps) replies.push_back(step.reply);
  const bool dante =
      !function.steps.empty() && function.steps[0].path.rfind(support::DapiPath(""), 0) == 0;
  if (!dante) replies.push_front(device.interfaces.bytes);
  return replies;
}

bool IsKnown(const std::string& end, const std::vector<std::regex>& known) {
  return std::any_of(known.begin(), known.end(),
                     [&](const std::regex& pattern) { return std::regex_match(end, pattern); });
}

int Run(const Options& options) {
  const auto known = ReadKnownEndings(options.known);
  const auto functions = support::AllFunctions();
  support::Device device;  // for its list of interfaces
  std::map<std::string, unsigned> ends;
  unsigned unknown = 0;
  for (unsigned round = options.first; round < options.first + options.rounds; ++round) {
    std::seed_seq seeds{options.seed, round};
    std::vector<std::uint32_t> seed(2);
    seeds.generate(seed.begin(), seed.end());
    const std::size_t number = seed[0] % functions.size();
    hostile_http2::HostilePeer peer(seed[1], GoodReplies(device, functions[number]));
    setenv("network_manager_url", peer.Url().c_str(), 1);
    setenv("grpc_dapi_url", peer.Url().c_str(), 1);
    CallingProcess process(options.one_call, number);
    peer.Serve();
    std::string end = process.End();
    if (end == kDoesNotEnd && peer.SentMoreThanAMessage()) end += " after more than a message";
    ++ends[end];
    if (end.empty() || IsKnown(end, known)) continue;
    ++unknown;
    std::printf("seed %u round %u, %s: %s\n", options.seed, round, functions[number].name.c_str(),
                end.c_str());
  }
  std::printf("hostile HTTP/2 peer: %u rounds, %u exited with 0, %u ended in an unknown way\n",
              options.rounds, ends[""], unknown);
  for (const auto& [end, count] : ends)
    if (!end.empty()) std::printf("  %u times %s\n", count, end.c_str());
  return unknown == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Answer calls of the library with HTTP/2 frames that are almost right");
  app.add_option("--seed", options.seed, "Seed of the random numbers")->capture_default_str();
  app.add_option("--rounds", options.rounds, "Number of rounds, one call each")
      ->capture_default_str();
  app.add_option("--first", options.first, "Number of the first round, to repeat it")
      ->capture_default_str();
  app.add_option("--known", options.known, "File of the known endings")->required();
  app.add_option("ONE_CALL", options.one_call, "The program that makes one call")->required();
  CLI11_PARSE(app, argc, argv);
  return Run(options);
}
