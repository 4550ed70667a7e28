// The resources that this process uses, and whether they keep growing.
#pragma once

#include <string>
#include <vector>

namespace load {

struct ProcessSize {
  long resident_kib;
  long threads;
  long descriptors;
};

/// The current size. Call it while no call is active.
ProcessSize Measure();

/// Flat: the first tenth of the samples is a warm-up; of the rest, the lowest of
/// the last quarter exceeds the highest of the first quarter by no more than 1 MiB,
/// two threads (gRPC starts and ends some) and one
/// descriptor. Returns what grew, empty if nothing did. Memory is left out under a
/// sanitizer, which keeps freed memory back.
std::string WhatGrew(const std::vector<ProcessSize>& samples);

}  // namespace load
