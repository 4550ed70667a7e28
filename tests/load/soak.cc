// A long run of mixed calls from a few threads against daemons that give a faulty answer
// to every tenth call and are killed and restarted again and again.
// Every result, output and line is checked; the process must not grow.
#include <CLI/CLI.hpp>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <sstream>

#include "support/captured_stderr.h"
#include "support/child_program.h"
#include "support/outcome.h"
#include "support/parallel.h"
#include "tests/faults/stderr_lines.h"
#include "tests/load/process_size.h"

namespace {

using load::ProcessSize;
using support::Function;

struct Figures {
  std::atomic<long> calls = 0;
  std::atomic<long> failed = 0;  // in a way that the table allows
  std::atomic<long> wrong = 0;
  long lines = 0;
  long foreign_lines = 0;  // gRPC's own
  long torn_lines = 0;     // neither
  long restarts = 0;
  std::vector<ProcessSize> samples;
};

using Result = std::pair<bool, std::string>;

// The possible results of a function when some of its steps fail.
std::set<Result> PossibleFailures(const Function& function) {
  std::set<Result> results;
  for (unsigned subset = 1; subset < 1U << function.steps.size(); ++subset) {
    std::set<std::size_t> failing;
    for (std::size_t i = 0; i < function.steps.size(); ++i)
      if ((subset >> i & 1U) != 0) failing.insert(i);
    const support::Outcome outcome = Expected(function, failing);
    results.insert({outcome.done, outcome.outputs});
  }
  return results;
}

class Mix {
 public:
  explicit Mix(Figures& counted) : figures(counted) {
    for (const Function& function : functions) {
      failures.push_back(PossibleFailures(function));
      Learn(function.printed);
      for (const support::Step& step : function.steps) Learn(step.line);
    }
  }

  /// `calls` functions chosen at random.
  void Run(int thread, long calls) {
    std::mt19937 random(static_cast<unsigned>(thread) * 7919U +
                        static_cast<unsigned>(figures.calls.load()));
    for (long i = 0; i < calls; ++i) CallOne(random() % functions.size());
  }

  /// Every line that was printed must be one of the library's, or gRPC's own.
  void CheckLines(const std::string& printed) {
    std::istringstream stream(printed);
    for (std::string line; std::getline(stream, line);) {
      if (lines.count(line) != 0) {
        ++figures.lines;
      } else if (faults::IsGrpcLine(line)) {
        ++figures.foreign_lines;
      } else {
        if (++figures.torn_lines < 10) std::printf("unknown line: %s\n", line.c_str());
      }
    }
  }

 private:
  void Learn(const std::string& text) {
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.insert(line);
  }

  void CallOne(std::size_t index) {
    const Function& function = functions[index];
    // setampname must not be called by several threads at once.
    std::unique_lock<std::mutex> lock(ampname, std::defer_lock);
    if (function.name == "setampname") lock.lock();
    Result result;
    result.first = function.call(result.second);
    ++figures.calls;
    if (result == Result(true, function.outputs)) return;
    if (failures[index].count(result) != 0) {
      ++figures.failed;
    } else if (++figures.wrong < 10) {
      std::printf("wrong: %s gave %s %s\n", function.name.c_str(), result.first ? "true" : "false",
                  result.second.c_str());
    }
  }

  const std::vector<Function> functions = support::AllFunctions();
  std::vector<std::set<Result>> failures;
  std::set<std::string> lines;
  std::mutex ampname;
  Figures& figures;
};

// Both daemons in a process that can be killed and started again on the same ports.
class DaemonProcess {
 public:
  explicit DaemonProcess(std::string soak_daemon) : program(std::move(soak_daemon)) { Restart(); }

  /// Kills it without warning and starts it again; returns when it serves. The
  /// environment of this process then has its endpoints.
  void Restart() {
    process.reset();
    process.emplace(std::vector<std::string>{program, network_manager_port, dapi_port});
    const std::string line = process->ReadLine();
    const std::size_t space = line.find(' ');
    if (space == std::string::npos) throw std::runtime_error(program + " does not serve");
    network_manager_port = Use("network_manager_url", line.substr(0, space));
    dapi_port = Use("grpc_dapi_url", line.substr(space + 1));
  }

 private:
  // Returns the port of the endpoint.
  static std::string Use(const char* variable, const std::string& endpoint) {
    setenv(variable, endpoint.c_str(), 1);
    return endpoint.substr(endpoint.rfind(':') + 1);
  }

  std::string program;
  std::string network_manager_port = "0";
  std::string dapi_port = "0";
  std::optional<support::ChildProgram> process;
};

struct Options {
  long calls = 1000000;
  long restart_every = 10000;
  int threads = 4;
  std::string daemon;
};

void Soak(const Options& options, Figures& figures) {
  DaemonProcess daemon(options.daemon);
  Mix mix(figures);
  while (figures.calls < options.calls) {
    support::CapturedStderr captured;
    support::RunInParallel(options.threads, [&](int thread) {
      mix.Run(thread, options.restart_every / options.threads);
    });
    mix.CheckLines(captured.Take());
    figures.samples.push_back(load::Measure());
    daemon.Restart();
    ++figures.restarts;
  }
}

void PrintRange(const char* name, const std::vector<ProcessSize>& samples,
                long ProcessSize::*what) {
  std::printf("  %-13s first %ld", name, samples.front().*what);
  for (std::size_t i = 1; i <= 4; ++i)
    std::printf(", at %zu/4 %ld", i, samples[samples.size() * i / 4 - 1].*what);
  std::printf("\n");
}

bool Report(const Figures& figures, double seconds) {
  std::printf("soak: %ld calls in %.0f s, %ld restarts of the daemons\n", figures.calls.load(),
              seconds, figures.restarts);
  std::printf("  %ld calls failed as expected, %ld returned a wrong value\n", figures.failed.load(),
              figures.wrong.load());
  std::printf("  %ld lines of the library, %ld of gRPC, %ld unknown\n", figures.lines,
              figures.foreign_lines, figures.torn_lines);
  PrintRange("resident KiB", figures.samples, &ProcessSize::resident_kib);
  PrintRange("threads", figures.samples, &ProcessSize::threads);
  PrintRange("descriptors", figures.samples, &ProcessSize::descriptors);
  const std::string grew = load::WhatGrew(figures.samples);
  std::printf("  %s\n", grew.empty() ? "flat" : grew.c_str());
  // Fewer failures than one call in twenty would mean that there were no faults.
  const bool faults_seen = figures.failed * 20 > figures.calls;
  if (!faults_seen) std::printf("  too few faults\n");
  return figures.wrong == 0 && figures.torn_lines == 0 && grew.empty() && faults_seen &&
         figures.failed * 2 < figures.calls;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Calls all functions of the library at random, many times");
  app.add_option("--calls", options.calls, "how many calls")->capture_default_str();
  app.add_option("--restart-every", options.restart_every, "calls between restarts of the daemons")
      ->capture_default_str();
  app.add_option("--threads", options.threads, "how many threads call")->capture_default_str();
  app.add_option("DAEMON", options.daemon, "the program soak_daemon")->required();
  CLI11_PARSE(app, argc, argv);

  Figures figures;
  const auto begin = std::chrono::steady_clock::now();
  Soak(options, figures);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  return Report(figures, taken.count()) ? 0 : 1;
}
