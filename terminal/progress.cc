#include "terminal/progress.h"

#include <unistd.h>

#include <iostream>
#include <utility>

namespace terminal {
namespace {

constexpr std::size_t kWidth = 30;
constexpr std::size_t kLeast = 10;  // what is shorter is over before it is read

}  // namespace

Progress::Progress(std::string name, std::size_t number)
    : what(std::move(name)), total(number), shown(number >= kLeast && isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (shown) std::cerr << "\r\x1b[K" << std::flush;
}

void Progress::Step() {
  ++done;
  if (!shown) return;
  const std::size_t filled = kWidth * done / total;
  std::cerr << "\r" + what + " [" + std::string(filled, '#') + std::string(kWidth - filled, ' ') +
                   "] " + std::to_string(done) + " of " + std::to_string(total)
            << std::flush;
}

}  // namespace terminal
