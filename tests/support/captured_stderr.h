// Collects what the process writes to its standard error, byte for byte.
#pragma once

#include <string>

namespace support {

class CapturedStderr {
 public:
  CapturedStderr();
  /// Gives standard error back.
  ~CapturedStderr();

  CapturedStderr(const CapturedStderr&) = delete;
  CapturedStderr& operator=(const CapturedStderr&) = delete;

  /// Everything written since the last time this was asked.
  std::string Take();

 private:
  int original;
  int file;
};

}  // namespace support
