#include "tools/time_limit.h"

#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>

#include "tools/failure.h"
#include "tools/output.h"

namespace tool::time_limit {
namespace {

// By daemon. Written before the limit starts: a signal handler can only copy bytes.
std::array<std::string, 3> reports;
int reports_to = STDERR_FILENO;
volatile std::sig_atomic_t called = 0;
volatile std::sig_atomic_t exit_status = 0;

void Pass(int) {
  const std::string& report = reports[static_cast<std::size_t>(called)];
  std::size_t written = 0;
  while (written < report.size()) {
    const ssize_t count = write(reports_to, report.data() + written, report.size() - written);
    if (count <= 0) break;
    written += static_cast<std::size_t>(count);
  }
  _exit(exit_status);
}

std::string Report(const Limit& limit, Daemon daemon) {
  std::array<char, 32> seconds{};
  std::snprintf(seconds.data(), seconds.size(), "%g", limit.seconds);
  const std::string what = daemon == Daemon::kNone
                               ? "not done"
                               : "no reply from " + The(daemon) + " at " + Endpoint(daemon);
  const Failure failure(ExitStatus::kTimeLimit, what + " within " + seconds.data() + " s", daemon);
  return limit.json ? JsonText(ErrorJson(limit.command, failure)) : ErrorLine(failure);
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
    reports[static_cast<std::size_t>(daemon)] = Report(limit, daemon);
  reports_to = limit.json ? STDOUT_FILENO : STDERR_FILENO;
  exit_status = static_cast<int>(ExitStatus::kTimeLimit);
  Arm(limit.seconds);
}

void StartQuiet(double seconds) {
  Stop();
  reports = {};
  exit_status = static_cast<int>(ExitStatus::kDone);
  Arm(seconds);
}

void Stop() {
  const itimerval none{};
  setitimer(ITIMER_REAL, &none, nullptr);
}

void Calling(Daemon daemon) { called = static_cast<std::sig_atomic_t>(daemon); }

}  // namespace tool::time_limit
