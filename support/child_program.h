// A program in its own process that can be asked, killed and frozen.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace support {

class ChildProgram {
 public:
  /// Starts the program. What it prints to standard error is discarded.
  explicit ChildProgram(std::vector<std::string> command);
  /// Kills it.
  ~ChildProgram();

  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  /// The next line that it prints, without the newline; empty if there is none within 40 s.
  std::string ReadLine();
  /// Writes these bytes to its standard input and returns the next line that it prints.
  std::string Ask(const std::string& bytes);

  void Kill();
  void Freeze();
  void Thaw();

 private:
  pid_t process = 0;
  int input = -1;  // this end of its standard input
  int output = -1;
};

}  // namespace support
