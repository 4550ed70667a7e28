#include "tools/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace tool {
namespace {

constexpr std::size_t kAtOnce = 16;

}  // namespace

void Parallel(std::size_t count, const std::function<void(std::size_t)>& function) {
  std::vector<std::exception_ptr> failures(count);
  std::atomic<std::size_t> next{0};
  std::atomic<bool> has_failed{false};
  const auto work = [&] {
    while (!has_failed) {
      const std::size_t i = next++;
      if (i >= count) return;
      try {
        function(i);
      } catch (...) {
        failures[i] = std::current_exception();
        has_failed = true;
      }
    }
  };
  std::vector<std::thread> others;
  others.reserve(kAtOnce);
  try {
    while (others.size() + 1 < std::min(count, kAtOnce)) others.emplace_back(work);
  } catch (const std::system_error&) {  // no more threads: with fewer
  }
  work();
  for (std::thread& other : others) other.join();
  for (const std::exception_ptr& failure : failures)
    if (failure) std::rethrow_exception(failure);
}

}  // namespace tool
