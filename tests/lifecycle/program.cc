// A program that uses the library and ends:
//   program use [network|dante]...     calls these, in this order, and returns
//   program exit [network|dante]...    the same, and calls exit()
//   program signals COUNT              calls while a timer sends 5,000 signals a second
//   program closed-stderr COUNT        calls without a standard error
//   program fork-exec                  calls, runs "descriptors" as a child, calls
//   program descriptors                prints the descriptors that it was given
#include <dirent.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"

namespace {

using Words = std::vector<std::string>;

bool Network() {
  std::string hostname;
  return NetworkgRPC::GetHostname(hostname);
}

bool Dante() {
  std::string name;
  return DantegRPC::GetName(name);
}

int Use(const Words& clients) {
  int failed = 0;
  for (const std::string& client : clients)
    failed += (client == "network" ? Network() : Dante()) ? 0 : 1;
  return failed;
}

std::atomic<long> signals_seen = 0;

int CallUnderSignals(int count) {
  struct sigaction action {};
  action.sa_handler = [](int) { ++signals_seen; };  // and no SA_RESTART
  sigaction(SIGUSR1, &action, nullptr);
  sigevent event{};
  event.sigev_notify = SIGEV_SIGNAL;
  event.sigev_signo = SIGUSR1;
  timer_t timer{};
  if (timer_create(CLOCK_MONOTONIC, &event, &timer) != 0) return 1;
  const itimerspec every{{0, 200000}, {0, 200000}};
  timer_settime(timer, 0, &every, nullptr);
  int done = 0;
  for (int i = 0; i < count; ++i) done += Network() ? 1 : 0;
  timer_delete(timer);
  std::printf("%d of %d calls succeeded\n", done, count);
  return signals_seen > 0 ? 0 : 1;
}

// The daemon answers one of the two calls. The other prints a line, to no descriptor.
int CallWithoutStderr(int count) {
  close(STDERR_FILENO);
  int right = 0;
  for (int i = 0; i < count; ++i) {
    int rate = -7;
    right += Network() && !DantegRPC::GetSampleRate(rate) && rate == -7 ? 1 : 0;
  }
  std::printf("%d of %d results are right\n", right, count);
  std::string now(256, '\0');
  const ssize_t size = readlink("/proc/self/fd/2", now.data(), now.size());
  now.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  std::printf("descriptor 2 is now: %s\n", now.substr(0, now.find('[')).c_str());
  return 0;
}

int PrintDescriptors() {
  DIR* const open = opendir("/proc/self/fd");
  std::string others;
  while (const dirent* entry = readdir(open)) {
    const std::string name = entry->d_name;
    if (name[0] != '.' && std::stoi(name) > 2 && std::stoi(name) != dirfd(open))
      others += " " + name;
  }
  closedir(open);
  std::printf("descriptors above 2:%s\n", others.c_str());
  return 0;
}

int CallForkExecAndCall(char* self) {
  if (!Network()) return 1;
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    execl(self, self, "descriptors", static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status == 0 && Network() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const Words words(argv + 1, argv + argc);
  if (words.empty()) return 2;
  const int count = words.size() > 1 ? std::atoi(words[1].c_str()) : 0;
  if (words[0] == "use") return Use({words.begin() + 1, words.end()});
  if (words[0] == "exit") std::exit(Use({words.begin() + 1, words.end()}));
  if (words[0] == "signals") return CallUnderSignals(count);
  if (words[0] == "closed-stderr") return CallWithoutStderr(count);
  if (words[0] == "fork-exec") return CallForkExecAndCall(argv[0]);
  if (words[0] == "descriptors") return PrintDescriptors();
  return 2;
}
