#include "tests/faults/parallel_processes.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>

namespace faults {
namespace {

using Clock = std::chrono::steady_clock;

// Ends a test that would hang; far longer than any job needs.
constexpr std::chrono::seconds kLimit{NETWORKGRPC_TEST_SECONDS - 10};

struct Running {
  std::string name;
  pid_t process;
  int pipe;
};

[[noreturn]] void WorkAndExit(const Job& job, int out) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  ResultCounts counts;
  try {
    job.work(counts);
  } catch (const std::exception& error) {
    counts.Count(job.name, false, error.what());
  }
  const std::string text = counts.ToString();
  for (std::size_t sent = 0; sent < text.size();) {
    const ssize_t size = write(out, text.data() + sent, text.size() - sent);
    if (size <= 0) break;
    sent += static_cast<std::size_t>(size);
  }
  _exit(0);
}

Running Start(const Job& job) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return {job.name, -1, -1};
  std::fflush(nullptr);
  const pid_t process = fork();
  if (process == 0) {
    close(ends[0]);
    WorkAndExit(job, ends[1]);
  }
  close(ends[1]);
  return {job.name, process, ends[0]};
}

std::string ReadUntil(int in, Clock::time_point end) {
  std::string text;
  std::array<char, 4096> block{};
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd waiting{in, POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(std::max<decltype(left)>(left, 0))) <= 0) return "";
    const ssize_t size = read(in, block.data(), block.size());
    if (size <= 0) return text;
    text.append(block.data(), static_cast<std::size_t>(size));
  }
}

}  // namespace

ResultCounts RunInParallelProcesses(const std::vector<Job>& jobs) {
  const auto end = Clock::now() + kLimit;
  std::vector<Running> running;
  for (const Job& job : jobs) running.push_back(Start(job));
  ResultCounts all;
  for (const Running& one : running) {
    const std::string text = ReadUntil(one.pipe, end);
    if (one.process > 0) {
      kill(one.process, SIGKILL);
      waitpid(one.process, nullptr, 0);
    }
    close(one.pipe);
    if (text.empty()) {
      all.Count(one.name, false, "crashed, or did not end in time");
    } else {
      all.Add(ResultCounts::FromString(text));
    }
  }
  return all;
}

ResultCounts RunForEveryFunction(
    const std::function<void(const support::Function&, ResultCounts&)>& work) {
  const std::vector<support::Function> all = support::AllFunctions();
  std::vector<Job> jobs;
  for (const support::Function& function : all)
    jobs.push_back(
        {function.name, [&function, &work](ResultCounts& counts) { work(function, counts); }});
  return RunInParallelProcesses(jobs);
}

}  // namespace faults
