// Runs a program to its end and captures what it prints.
#pragma once

#include <string>
#include <vector>

namespace support {

struct Finished {
  int status;  // exit status, or 128 plus the signal that ended it
  std::string out;
  std::string err;
};

/// Runs a program with the environment of this process and waits for its end.
Finished Run(const std::vector<std::string>& command);

}  // namespace support
