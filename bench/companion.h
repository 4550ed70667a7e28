// A child process that answers while a benchmark lasts, and ends with it.
#pragma once

#include <sys/types.h>

#include <functional>

namespace bench {

class Companion {
 public:
  /// Forks; the child runs `serve` and ends. To be made before there are threads.
  explicit Companion(const std::function<void()>& serve);
  ~Companion();

  Companion(const Companion&) = delete;
  Companion& operator=(const Companion&) = delete;

 private:
  pid_t child;
};

}  // namespace bench
