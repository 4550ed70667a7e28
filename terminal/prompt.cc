#include "terminal/prompt.h"

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <optional>

#include "terminal/printable.h"

namespace terminal {
namespace {

using Clock = std::chrono::steady_clock;
using End = std::optional<Clock::time_point>;

// False at `end`.
bool WaitForInput(const End& end) {
  int left_ms = -1;  // no limit
  if (end.has_value()) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(*end - Clock::now());
    if (left.count() <= 0) return false;
    left_ms = static_cast<int>(left.count());
  }
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return poll(&input, 1, left_ms) > 0;
}

// Byte by byte, so that what follows the line remains to be read.
bool ReadsYes(const End& end) {
  std::string answer;
  while (WaitForInput(end)) {
    char character = '\0';
    if (read(STDIN_FILENO, &character, 1) != 1) return false;
    if (character == '\n') return answer == "y" || answer == "Y" || answer == "yes";
    answer += character;
  }
  return false;
}

}  // namespace

bool HasPerson() { return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1; }

bool AnswersYes(const std::string& question) {
  std::cerr << Printable(question) << " [y/N] " << std::flush;
  return ReadsYes(std::nullopt);
}

bool AnswersYesWithin(double seconds, const std::string& question) {
  std::cerr << Printable(question) << " [y/N, within " << seconds << " s] " << std::flush;
  return ReadsYes(Clock::now() + std::chrono::milliseconds(static_cast<long long>(seconds * 1e3)));
}

}  // namespace terminal
