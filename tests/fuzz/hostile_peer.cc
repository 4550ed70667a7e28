// Round after round a fresh process calls one function of the library, and the
// peer that answers it changes a few of an honest server's frames. The process
// must end by itself, and well, or in one of the ways that are known of gRPC.
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

#include "tests/fuzz/hostile_connection.h"
#include "tests/support/functions.h"

namespace {

using support::Function;

constexpr const char* kDoesNotEnd = "does not end";
// The connection is closed by then and nobody listens: milliseconds would do.
constexpr int kEndLimitMs = 10000;

struct Options {
  unsigned seed = 1;
  unsigned rounds = 300;
  unsigned first = 0;
  std::string known;
  std::string victim;
};

// A process that writes its standard error into a file of its own.
class Victim {
 public:
  Victim(const std::string& program, std::size_t function)
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
  ~Victim() { close(errors); }

  Victim(const Victim&) = delete;
  Victim& operator=(const Victim&) = delete;

  /// How it ended: empty when well, else what to know the way by again.
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
    return how + ": " + LastWords();
  }

 private:
  // The last line that is not the library's, nor an emulator's that tells of the signal,
  // without time, process and thread.
  std::string LastWords() const {
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

// One regular expression per line; # begins a comment.
std::vector<std::regex> ReadKnown(const std::string& path) {
  std::vector<std::regex> known;
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  for (std::string line; std::getline(file, line);)
    if (!line.empty() && line[0] != '#') known.emplace_back(line);
  return known;
}

std::deque<std::string> HonestReplies(const support::Device& device, const Function& function) {
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
  const auto known = ReadKnown(options.known);
  const auto functions = support::AllFunctions();
  support::Device device;  // for its list of interfaces
  std::map<std::string, unsigned> ends;
  unsigned unknown = 0;
  for (unsigned round = options.first; round < options.first + options.rounds; ++round) {
    std::seed_seq seeds{options.seed, round};
    std::vector<std::uint32_t> seed(2);
    seeds.generate(seed.begin(), seed.end());
    const std::size_t number = seed[0] % functions.size();
    fuzz::HostileConnection peer(seed[1], HonestReplies(device, functions[number]));
    setenv("network_manager_url", peer.Url().c_str(), 1);
    setenv("grpc_dapi_url", peer.Url().c_str(), 1);
    Victim victim(options.victim, number);
    peer.Serve();
    std::string end = victim.End();
    if (end == kDoesNotEnd && peer.SentMoreThanAMessage()) end += " after more than a message";
    ++ends[end];
    if (end.empty() || IsKnown(end, known)) continue;
    ++unknown;
    std::printf("seed %u round %u, %s: %s\n", options.seed, round, functions[number].name.c_str(),
                end.c_str());
  }
  std::printf("hostile peer: %u rounds, %u ended well, %u in an unknown way\n", options.rounds,
              ends[""], unknown);
  for (const auto& [end, count] : ends)
    if (!end.empty()) std::printf("  %u times %s\n", count, end.c_str());
  return unknown == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Answers calls of the library with frames that are almost right");
  app.add_option("--seed", options.seed, "begins the random numbers")->capture_default_str();
  app.add_option("--rounds", options.rounds, "how many calls")->capture_default_str();
  app.add_option("--first", options.first, "number of the first one, to repeat it")
      ->capture_default_str();
  app.add_option("--known", options.known, "ways to end that are known")->required();
  app.add_option("VICTIM", options.victim, "the program hostile_peer_victim")->required();
  CLI11_PARSE(app, argc, argv);
  return Run(options);
}
