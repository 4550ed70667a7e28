// Many threads that begin at the same moment.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace support {

/// Runs `body` on this many threads, all let go at the same moment, and waits for
/// them. The body is told which thread it is, from 0 on.
inline void RunTogether(int threads, const std::function<void(int)>& body) {
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
