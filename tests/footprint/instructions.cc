// instructions [NAME...]: makes every plain call, or these, as often as it takes
// for caches to be warm, then once inside measured_call, which callgrind watches.
// Prints the names in the order of the measured calls. instructions.py runs it.
#include <cstdio>
#include <set>
#include <string>

#include "tests/footprint/plain_calls.h"

extern "C" __attribute__((noinline)) bool measured_call(bool (*call)()) {
  const bool done = call();
  asm volatile("" ::: "memory");  // no tail call: the end of this function is watched, too
  return done;
}

int main(int argc, char** argv) {
  const std::set<std::string> wanted(argv + 1, argv + argc);
  for (const auto& plain : footprint::PlainCalls()) {
    if (!wanted.empty() && wanted.count(plain.name) == 0) continue;
    bool done = true;
    for (int i = 0; i < 5; ++i) done = plain.call() && done;
    if (!measured_call(plain.call) || !done) {
      std::printf("%s failed\n", plain.name);
      return 1;
    }
    std::printf("%s\n", plain.name);
  }
  return 0;
}
