#include "tests/load/process_size.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/resident_memory.h"

namespace load {
namespace {

long Entries(const char* folder) {
  return static_cast<long>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

std::string Grew(const std::vector<ProcessSize>& samples, long ProcessSize::*what, long allowed,
                 const std::string& name) {
  const auto begin = samples.begin() + static_cast<std::ptrdiff_t>((samples.size() + 9) / 10);
  const auto quarter = (samples.end() - begin) / 4;
  const auto less = [what](const ProcessSize& a, const ProcessSize& b) {
    return a.*what < b.*what;
  };
  const long before = (*std::max_element(begin, begin + quarter, less)).*what;
  const long after = (*std::min_element(samples.end() - quarter, samples.end(), less)).*what;
  if (after - before <= allowed) return "";
  return name + " grew from " + std::to_string(before) + " to " + std::to_string(after) + "; ";
}

}  // namespace

ProcessSize Measure() {
  long total = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  // One descriptor is the one that lists them.
  return {resident * sysconf(_SC_PAGESIZE) / 1024, Entries("/proc/self/task"),
          Entries("/proc/self/fd") - 1};
}

std::string WhatGrew(const std::vector<ProcessSize>& samples) {
  if (samples.size() < 8) return "too few samples to tell; ";
  std::string grew;
  if (support::kResidentMemoryIsMeaningful)
    grew += Grew(samples, &ProcessSize::resident_kib, 2048, "resident KiB");
  return grew + Grew(samples, &ProcessSize::threads, 4, "threads") +
         Grew(samples, &ProcessSize::descriptors, 1, "descriptors");
}

}  // namespace load
