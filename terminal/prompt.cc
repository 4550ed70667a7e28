#include "terminal/prompt.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <iostream>

#include "terminal/printable.h"

namespace terminal {

bool HasPerson() { return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1; }

bool AnswersYes(const std::string& question) {
  return Ask(question, [] { return true; }) == Answer::kYes;
}

// Byte by byte, so that what follows the line remains to be read.
Answer Ask(const std::string& question, const std::function<bool()>& goes_on) {
  constexpr int kPauseMs = 100;
  tcflush(STDIN_FILENO, TCIFLUSH);
  std::cerr << Printable(question) << " [y/N] " << std::flush;
  std::string line;
  while (goes_on()) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, kPauseMs) <= 0) continue;
    char character = '\0';
    if (read(STDIN_FILENO, &character, 1) != 1) return Answer::kNone;
    if (character == '\n')
      return line == "y" || line == "Y" || line == "yes" ? Answer::kYes : Answer::kNo;
    line += character;
  }
  return Answer::kNone;
}

}  // namespace terminal
