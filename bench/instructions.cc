// instructions [--list] [NAME...]: makes the plain call of every function, or of these, a
// few times, so that caches are warm, then once inside measured_call, which callgrind
// watches. Prints the names in the order of the measured calls; --list prints them all
// and calls nothing. instructions.py runs it.
#include <cstdio>
#include <set>
#include <string>

#include "support/functions.h"

extern "C" __attribute__((noinline)) bool measured_call(bool (*call)()) {
  const bool done = call();
  asm volatile("" ::: "memory");  // no tail call: the end of this function is watched, too
  return done;
}

namespace {

bool Measure(const support::Function& function) {
  bool worked = true;
  for (int i = 0; i < 5; ++i) worked = function.plain_call() && worked;
  return measured_call(function.plain_call) && worked;
}

}  // namespace

int main(int argc, char** argv) {
  std::set<std::string> wanted(argv + 1, argv + argc);
  const bool list_only = wanted.erase("--list") != 0;
  for (const support::Function& function : support::AllFunctions()) {
    if (!wanted.empty() && wanted.count(function.name) == 0) continue;
    const bool worked = list_only || Measure(function);
    std::printf("%s%s\n", function.name.c_str(), worked ? "" : " failed");
    if (!worked) return 1;
  }
  return 0;
}
