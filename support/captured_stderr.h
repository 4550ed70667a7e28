// Captures what the process writes to standard error, byte for byte.
#pragma once

#include <string>

namespace support {

class CapturedStderr {
 public:
  CapturedStderr();
  /// Restores standard error.
  ~CapturedStderr();

  CapturedStderr(const CapturedStderr&) = delete;
  CapturedStderr& operator=(const CapturedStderr&) = delete;

  /// Returns everything written since the last call of Take().
  std::string Printed() const;
  /// The same, and forgets it.
  std::string Take();

 private:
  int original;
  int file;
};

}  // namespace support
