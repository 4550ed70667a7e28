#include "tools/deadline.h"

#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>

#include "tools/envelope.h"
#include "tools/failure.h"

namespace tool::deadline {
namespace {

// Written before the limit starts: a signal handler can only copy bytes.
std::array<std::string, 3> last_words;
int last_words_to = STDERR_FILENO;
volatile std::sig_atomic_t asking = 0;
volatile std::sig_atomic_t exit_status = 0;

void Pass(int) {
  const std::string& words = last_words[static_cast<std::size_t>(asking)];
  std::size_t written = 0;
  while (written < words.size()) {
    const ssize_t count = write(last_words_to, words.data() + written, words.size() - written);
    if (count <= 0) break;
    written += static_cast<std::size_t>(count);
  }
  _exit(exit_status);
}

std::string LastWords(const Limit& limit, Daemon daemon) {
  std::array<char, 32> seconds{};
  std::snprintf(seconds.data(), seconds.size(), "%g", limit.seconds);
  const std::string who =
      daemon == Daemon::kNone
          ? "not done"
          : std::string("no answer from the ") + Name(daemon) + " daemon at " + Endpoint(daemon);
  const Failure failure(ExitStatus::kTimeLimit, who + " within " + seconds.data() + " s", daemon);
  return limit.json ? JsonText(FailureEnvelope(limit.command, failure)) : ErrorLine(failure);
}

void Arm(double seconds) {
  struct sigaction action {};
  action.sa_handler = Pass;
  sigaction(SIGALRM, &action, nullptr);
  double whole = 0;
  const double fraction = std::modf(seconds, &whole);
  itimerval timer{};
  timer.it_value.tv_sec = static_cast<time_t>(whole);
  timer.it_value.tv_usec = static_cast<suseconds_t>(fraction * 1e6);
  setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

void Start(const Limit& limit) {
  Stop();
  for (const Daemon daemon : {Daemon::kNone, Daemon::kNetworkManager, Daemon::kDante})
    last_words[static_cast<std::size_t>(daemon)] = LastWords(limit, daemon);
  last_words_to = limit.json ? STDOUT_FILENO : STDERR_FILENO;
  exit_status = static_cast<int>(ExitStatus::kTimeLimit);
  Arm(limit.seconds);
}

void StartQuiet(double seconds) {
  Stop();
  last_words = {};
  exit_status = static_cast<int>(ExitStatus::kDone);
  Arm(seconds);
}

void Stop() {
  const itimerval none{};
  setitimer(ITIMER_REAL, &none, nullptr);
}

void Asking(Daemon daemon) { asking = static_cast<std::sig_atomic_t>(daemon); }

}  // namespace tool::deadline
