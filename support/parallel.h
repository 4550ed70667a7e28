// Threads that start their work at the same moment.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace support {

/// Runs `body` on this many threads, which start at the same moment, and waits for them.
/// The argument of `body` is the number of the thread, from 0.
inline void RunInParallel(int threads, const std::function<void(int)>& body) {
  std::mutex mutex;
  std::condition_variable changed;
  int ready = 0;
  std::vector<std::thread> running;
  for (int i = 0; i < threads; ++i) {
    running.emplace_back([&, i] {
      {
        std::unique_lock<std::mutex> lock(mutex);
        if (++ready == threads) changed.notify_all();
        changed.wait(lock, [&] { return ready == threads; });
      }
      body(i);
    });
  }
  for (std::thread& thread : running) thread.join();
}

}  // namespace support
