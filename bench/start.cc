// From the start of a process to its first answer, alternately through the library and
// through the stub.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>

#include "bench/pairs.h"

namespace {

using Clock = std::chrono::steady_clock;

// A program that prints one line when it has its answer: the memory that it uses.
class Program {
 public:
  explicit Program(std::vector<std::string> words) : command(std::move(words)) {}

  /// Seconds until the first byte of the line; negative when the program failed.
  double Run() {
    std::array<int, 2> out{};
    if (pipe2(out.data(), O_CLOEXEC) != 0) return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (std::string& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);

    const auto begin = Clock::now();
    pid_t child = 0;
    const bool started =
        posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    std::array<char, 100> line{};
    const auto size = started ? read(out[0], line.data(), line.size() - 1) : -1;
    const std::chrono::duration<double> taken = Clock::now() - begin;
    close(out[0]);
    int status = 1;
    if (started) waitpid(child, &status, 0);
    double written = 0;
    double owned = 0;
    if (status != 0 || size <= 0 || std::sscanf(line.data(), "%lf %lf", &written, &owned) != 2)
      return -1;
    dirty_kib.push_back(written);
    private_kib.push_back(owned);
    return taken.count();
  }

  std::vector<double> dirty_kib;
  std::vector<double> private_kib;

 private:
  std::vector<std::string> command;
};

void Start(benchmark::State& state, const std::vector<std::string>& command) {
  Program library(command);
  Program stub({FIRST_ANSWER_RAW});
  bench::CompareMeasured(
      state, [&] { return library.Run(); }, [&] { return stub.Run(); });
  state.counters["library_dirty_kib"] = bench::Median(library.dirty_kib);
  state.counters["stub_dirty_kib"] = bench::Median(stub.dirty_kib);
  state.counters["library_private_kib"] = bench::Median(library.private_kib);
  state.counters["stub_private_kib"] = bench::Median(stub.private_kib);
}

void Linked(benchmark::State& state) { Start(state, {FIRST_ANSWER_LINKED}); }
BENCHMARK(Linked)->UseManualTime()->Unit(benchmark::kMillisecond);

void Loaded(benchmark::State& state) { Start(state, {FIRST_ANSWER_LOADED, LIBRARY}); }
BENCHMARK(Loaded)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
