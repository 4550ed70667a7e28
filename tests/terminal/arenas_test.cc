// malloc does not look for /sys, which is absent from a bare chroot.
#include "terminal/arenas.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

// More than the arenas that glibc makes without counting the processors.
constexpr std::size_t kThreads = 64;

// Threads, all alive at once, in which a successful malloc has changed errno.
long ThreadsWithErrno() {
  std::vector<int> errors(kThreads);
  std::vector<std::thread> threads;
  std::mutex mutex;
  std::condition_variable all_done;
  std::size_t done = 0;
  threads.reserve(kThreads);
  for (int& error : errors)
    threads.emplace_back([&] {
      errno = 0;
      void* volatile memory = std::malloc(100);
      error = errno;
      std::free(memory);
      std::unique_lock<std::mutex> lock(mutex);
      if (++done == kThreads) all_done.notify_all();
      all_done.wait(lock, [&] { return done == kThreads; });
    });
  for (std::thread& thread : threads) thread.join();
  return std::count_if(errors.begin(), errors.end(), [](int error) { return error != 0; });
}

// In an empty root folder. 100 if there cannot be one.
int ThreadsWithErrnoInAChroot() {
  std::string folder = testing::TempDir() + "arenas_test.XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) return 100;
  const pid_t child = fork();
  if (child == 0) {
    const bool is_in =
        (geteuid() == 0 || unshare(CLONE_NEWUSER) == 0) && chroot(folder.c_str()) == 0;
    _exit(is_in ? static_cast<int>(ThreadsWithErrno()) : 100);
  }
  int status = 0;
  waitpid(child, &status, 0);
  rmdir(folder.c_str());
  return WEXITSTATUS(status);
}

TEST(Arenas, NumberIsFixedAndSysIsAbsent_MallocLeavesErrno) {
  terminal::FixNumberOfArenas();

  const int threads = ThreadsWithErrnoInAChroot();

  if (threads == 100) GTEST_SKIP() << "this user cannot change the root folder";
  EXPECT_EQ(threads, 0);
}

}  // namespace
