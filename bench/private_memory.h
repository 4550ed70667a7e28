// The memory that a process shares with no other.
#pragma once

#include <cstdio>
#include <cstring>

namespace bench {

/// Resident pages that no other process shares, in KiB. Those it has written to,
/// or with `clean` also those that only it has mapped. Allocates nothing.
inline long PrivateKib(bool clean) {
  long total = 0;
  char line[256];
  std::FILE* const rollup = std::fopen("/proc/self/smaps_rollup", "r");
  while (rollup != nullptr && std::fgets(line, sizeof line, rollup) != nullptr) {
    long kib = 0;
    if (std::sscanf(line, "Private_Dirty: %ld", &kib) == 1 ||
        (clean && std::sscanf(line, "Private_Clean: %ld", &kib) == 1))
      total += kib;
  }
  if (rollup != nullptr) std::fclose(rollup);
  return total;
}

/// Reports the first answer and the memory that it took: prints "DIRTY ALL" in KiB.
inline int ReportFirstAnswer(bool answered) {
  if (!answered) return 1;
  const long dirty = PrivateKib(false);
  const long all = PrivateKib(true);
  std::printf("%ld %ld\n", dirty, all);
  return std::fflush(stdout);
}

}  // namespace bench
