// Calls and their answers in a file: JSON lines (docs/simulator.md).
//
//   {"recording":1,"redacted":false}
//   {"number":1,"time":"...","milliseconds":0.4,"method":"DAPI.GetName",...}
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/backend.h"
#include "simulator/descriptor.h"
#include "simulator/redactor.h"

namespace simulator {

/// A call of a recording.
struct RecordedCall {
  std::string path;
  std::string request;
  bool is_change = false;  // its reply is the message Success
  Outcome outcome;
};

/// Writes a recording. Threads: Write may be called from several threads at once.
class RecordingFile {
 public:
  /// Replaces the file. Throws std::runtime_error.
  RecordingFile(const std::string& given, bool redacts);

  /// Reports the first failure on standard error. The calls that come behind it are not recorded.
  void Write(const Query& query, const std::string& fault, const Outcome& outcome);
  /// Whether every call until now was recorded.
  bool IsComplete() const;

 private:
  void WriteLine(const std::string& line);
  void End(int reason);

  const std::string name;
  mutable std::mutex mutex;
  Descriptor file;
  std::unique_ptr<Redactor> redactor;  // null to keep everything
  std::uint64_t number = 0;
  off_t length = 0;  // of the lines that are whole
  bool has_failed = false;
};

/// Throws std::runtime_error, "FILE:LINE: reason".
std::vector<RecordedCall> ReadRecording(const std::string& file);

}  // namespace simulator
