// How far a long work is: a line on standard error, if that is a terminal.
#pragma once

#include <cstddef>
#include <string>

namespace terminal {

class Progress {
 public:
  /// `what` is said before the numbers, such as "reading".
  Progress(std::string what, std::size_t total);
  ~Progress();  // removes the line

  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Step();

 private:
  const std::string what;
  const std::size_t total;
  const bool shown;
  std::size_t done = 0;
};

}  // namespace terminal
