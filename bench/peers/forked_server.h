// A child process that serves while a benchmark runs, and ends with it.
#pragma once

#include <sys/types.h>

#include <functional>

namespace bench {

class ForkedServer {
 public:
  /// Forks; the child runs `serve` and ends. Construct it before the process has threads.
  explicit ForkedServer(const std::function<void()>& serve);
  ~ForkedServer();

  ForkedServer(const ForkedServer&) = delete;
  ForkedServer& operator=(const ForkedServer&) = delete;

 private:
  pid_t child;
};

}  // namespace bench
