#include "tools/each_device.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <functional>
#include <iostream>
#include <mutex>
#include <optional>
#include <set>
#include <sstream>
#include <system_error>
#include <thread>

#include "terminal/table.h"
#include "tools/failure.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/parallel.h"
#include "tools/spawn.h"

namespace tool {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr auto kPatience = std::chrono::seconds(3);

// From the worst: what is not known, what may be done in part, what was rejected, what was
// wrong with the command, and where nothing was changed because no daemon replied.
constexpr std::array<ExitStatus, 8> kFromTheWorst{
    ExitStatus::kUnknown,  ExitStatus::kFailed, ExitStatus::kRejected,  ExitStatus::kErrorStatus,
    ExitStatus::kNotFound, ExitStatus::kUsage,  ExitStatus::kTimeLimit, ExitStatus::kUnreachable};

int Worst(const std::vector<int>& statuses) {
  for (const ExitStatus it : kFromTheWorst)
    if (std::count(statuses.begin(), statuses.end(), static_cast<int>(it)) != 0)
      return static_cast<int>(it);
  return *std::max_element(statuses.begin(), statuses.end());
}

// The processes that a signal has to reach.
class Running {
 public:
  /// False if nothing is to be started any more.
  bool Add(const std::function<pid_t()>& start, pid_t& process) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (is_ending) return false;
    process = start();
    processes.insert(process);
    return true;
  }
  void Remove(pid_t process) {
    const std::lock_guard<std::mutex> lock(mutex);
    processes.erase(process);
  }
  void End() {
    const std::lock_guard<std::mutex> lock(mutex);
    is_ending = true;
    for (const pid_t it : processes) kill(it, SIGTERM);
  }

 private:
  std::mutex mutex;
  std::set<pid_t> processes;
  bool is_ending = false;
};

class Pipe {
 public:
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
      throw Failure(ExitStatus::kFailed, "cannot create a pipe for a device");
  }
  ~Pipe() {
    CloseWrite();
    close(ends[0]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int Read() const { return ends[0]; }
  int Write() const { return ends[1]; }
  void CloseWrite() {
    if (ends[1] >= 0) close(ends[1]);
    ends[1] = -1;
  }

 private:
  std::array<int, 2> ends{};
};

using Sink = std::function<void(bool is_error, const std::string& bytes)>;

// Until both are closed. Ends the processes when nobody reads what this one prints.
void Forward(const Pipe& output, const Pipe& errors, Running& running, const Sink& sink) {
  std::array<pollfd, 3> sources{
      {{output.Read(), POLLIN, 0}, {errors.Read(), POLLIN, 0}, {STDOUT_FILENO, 0, 0}}};
  std::array<char, 4096> bytes{};
  while (sources[0].fd >= 0 || sources[1].fd >= 0) {
    if (poll(sources.data(), sources.size(), -1) < 0) continue;
    if ((sources[2].revents & POLLERR) != 0) running.End();
    if (sources[2].revents != 0) sources[2].fd = -1;
    for (const std::size_t i : {0U, 1U}) {
      if (sources.at(i).revents == 0) continue;
      const ssize_t size = read(sources.at(i).fd, bytes.data(), bytes.size());
      if (size > 0)
        sink(i == 1, std::string(bytes.data(), static_cast<std::size_t>(size)));
      else
        sources.at(i).fd = -1;
    }
  }
}

/// Returns the exit status of the process.
int RunProcess(const std::string& device, const std::vector<std::string>& arguments,
               Running& running, const Sink& sink) {
  std::vector<std::string> words{"networkgrpc", kOneDeviceCommand, device};
  words.insert(words.end(), arguments.begin(), arguments.end());
  Pipe output;
  Pipe errors;
  pid_t process = 0;
  const auto start = [&] {
    return Spawn(
        {kThisProgram,
         {{STDIN_FILENO}, {STDOUT_FILENO, output.Write()}, {STDERR_FILENO, errors.Write()}}},
        words);
  };
  if (!running.Add(start, process)) return static_cast<int>(ExitStatus::kFailed);
  output.CloseWrite();
  errors.CloseWrite();
  Forward(output, errors, running, sink);
  running.Remove(process);
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : static_cast<int>(ExitStatus::kFailed);
}

Ended RunAndCollect(const std::string& device, const std::vector<std::string>& arguments,
                    Running& running) {
  Ended ended;
  ended.status =
      RunProcess(device, arguments, running, [&](bool is_error, const std::string& bytes) {
        (is_error ? ended.errors : ended.output) += bytes;
      });
  return ended;
}

std::string WithDevice(const std::string& device, const std::string& lines) {
  std::string text;
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);)
    text.append(device).append(": ").append(line) += '\n';
  return text;
}

// DeviceLines of several processes, each as soon as it is whole.
class DeviceLines {
 public:
  DeviceLines(std::string name, Form how) : device(std::move(name)), form(how) {}

  void Add(bool is_error, const std::string& bytes) {
    std::string& rest = is_error ? errors : output;
    rest += bytes;
    const std::size_t end = rest.rfind('\n');
    if (end == std::string::npos) return;
    const std::string whole = rest.substr(0, end + 1);
    rest.erase(0, end + 1);
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    const bool is_json = !is_error && form == Form::kJsonAsComes;
    (is_error ? std::cerr : std::cout)
        << (is_json ? whole : WithDevice(device, whole)) << std::flush;
  }

 private:
  const std::string device;
  const Form form;
  std::string output;
  std::string errors;
};

// Without an end: all at once.
std::vector<int> Follow(const std::vector<Device>& devices,
                        const std::vector<std::string>& arguments, Form form, Running& running) {
  std::vector<int> statuses(devices.size());
  std::vector<std::thread> threads;
  const auto run = [&](std::size_t i) {
    DeviceLines lines(devices[i].name, form);
    const auto add = [&](bool is_error, const std::string& bytes) { lines.Add(is_error, bytes); };
    try {
      statuses[i] = RunProcess(devices[i].name, arguments, running, add);
    } catch (const Failure& failure) {
      add(true, ErrorLine(failure.message));
      statuses[i] = static_cast<int>(failure.status);
    }
  };
  threads.reserve(devices.size());
  for (std::size_t i = 0; i < devices.size(); ++i) {
    try {
      threads.emplace_back(run, i);
    } catch (const std::system_error& error) {
      std::cerr << ErrorLine(devices[i].name + ": cannot start a thread: " + error.what());
      statuses[i] = static_cast<int>(ExitStatus::kFailed);
    }
  }
  for (std::thread& it : threads) it.join();
  return statuses;
}

/// What has ended and is not printed yet.
class Results {
 public:
  explicit Results(std::size_t count) : results(count) {}

  void Add(std::size_t i, Ended ended) {
    const std::lock_guard<std::mutex> lock(mutex);
    results[i] = {std::move(ended), SteadyClock::now()};
    added.notify_all();
  }

  /// Waits for those to print next, in order.
  std::vector<std::size_t> Next() {
    std::unique_lock<std::mutex> lock(mutex);
    while (true) {
      const std::size_t first = FirstUnprinted();
      std::vector<std::size_t> ended;
      auto since = SteadyClock::time_point::max();
      for (std::size_t i = first; i < results.size(); ++i)
        if (results[i].has_value() && !results[i]->is_printed) {
          ended.push_back(i);
          since = std::min(since, results[i]->when);
        }
      if (ended.empty()) {
        added.wait(lock);
      } else if (ended.front() == first || SteadyClock::now() >= since + kPatience) {
        if (ended.front() == first) ended.resize(1);
        for (const std::size_t i : ended) results[i]->is_printed = true;
        return ended;
      } else {
        added.wait_until(lock, since + kPatience);
      }
    }
  }

  const Ended& At(std::size_t i) {
    const std::lock_guard<std::mutex> lock(mutex);
    return results[i]->ended;
  }

 private:
  struct Result {
    Ended ended;
    SteadyClock::time_point when;
    bool is_printed = false;
  };

  std::size_t FirstUnprinted() const {
    const auto is_unprinted = [](const std::optional<Result>& it) {
      return !it.has_value() || !it->is_printed;
    };
    return static_cast<std::size_t>(std::find_if(results.begin(), results.end(), is_unprinted) -
                                    results.begin());
  }

  std::mutex mutex;
  std::condition_variable added;
  std::vector<std::optional<Result>> results;
};

void Print(const std::string& device, const Ended& ended, Form form, bool is_first) {
  if (form == Form::kText)
    std::cout << (is_first ? "" : "\n") << terminal::Bold(device + ":") << "\n";
  std::cout << ended.output << std::flush;
  std::cerr << WithDevice(device, ended.errors);
}

std::vector<int> Collect(const std::vector<Device>& devices,
                         const std::vector<std::string>& arguments, Form form, Running& running) {
  Results results(devices.size());
  std::thread runs([&] {
    Parallel(devices.size(), [&](std::size_t i) {
      Ended ended{"", "", static_cast<int>(ExitStatus::kFailed)};
      try {
        ended = RunAndCollect(devices[i].name, arguments, running);
      } catch (const Failure& failure) {
        ended.errors = ErrorLine(failure.message);
      }
      results.Add(i, std::move(ended));
    });
  });
  std::vector<int> statuses;
  while (statuses.size() < devices.size())
    for (const std::size_t i : results.Next()) {
      Print(devices[i].name, results.At(i), form, statuses.empty());
      statuses.push_back(results.At(i).status);
    }
  runs.join();
  return statuses;
}

}  // namespace

void EndWithParent() {
  const pid_t parent = getppid();
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) std::raise(SIGTERM);
}

Ended RunOn(const std::string& device, const std::vector<std::string>& arguments) {
  Running running;
  const interrupt::Handler handler([&running] { running.End(); });
  return RunAndCollect(device, arguments, running);
}

int RunOnEach(const std::vector<Device>& devices, const std::vector<std::string>& arguments,
              Form form) {
  Running running;
  const interrupt::Handler handler([&running] { running.End(); });
  const bool follows = form == Form::kLines || form == Form::kJsonAsComes;
  const auto statuses = (follows ? Follow : Collect)(devices, arguments, form, running);
  if (std::cout) return Worst(statuses);
  return static_cast<int>(ExitStatus::kFailed);
}

}  // namespace tool
