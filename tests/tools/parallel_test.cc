// Work side by side on a machine that starts no more threads.
#include "tools/parallel.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>

namespace {

std::atomic<int> threads_left{0};

}  // namespace

// In place of that of the C library.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*function)(void*), void* argument) {
  if (threads_left-- <= 0) return EAGAIN;
  static const auto real =
      reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return real(thread, attributes, function, argument);
}

namespace {

class ParallelWithThreads : public testing::TestWithParam<int> {};

TEST_P(ParallelWithThreads, FewerThanWanted_DoesAllTheWork) {
  threads_left = GetParam();
  std::atomic<int> done{0};
  tool::Parallel(100, [&done](std::size_t) { ++done; });
  EXPECT_EQ(done, 100);
}

INSTANTIATE_TEST_SUITE_P(Numbers, ParallelWithThreads, testing::Values(0, 1, 3));

}  // namespace
