// Splits what a process wrote to standard error: only the library's own lines are
// fixed; gRPC and protobuf add lines of theirs.
#pragma once

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>

namespace faults {

struct StderrLines {
  std::string library;  // its lines, in order
  int grpc = 0;         // start with E, I or D and a date: "E1121 03:44:18 ..."
  int protobuf = 0;     // start with "[libprotobuf "
};

inline bool IsGrpcLine(const std::string& line) {
  const std::string levels = "EID";
  return line.size() > 5 && levels.find(line[0]) != std::string::npos &&
         std::all_of(line.begin() + 1, line.begin() + 5,
                     [](unsigned char c) { return std::isdigit(c) != 0; });
}

inline StderrLines SplitStderr(const std::string& printed) {
  StderrLines lines;
  std::istringstream in(printed);
  for (std::string line; std::getline(in, line);) {
    if (IsGrpcLine(line)) {
      ++lines.grpc;
    } else if (line.rfind("[libprotobuf ", 0) == 0) {
      ++lines.protobuf;
    } else {
      lines.library += line + (in.eof() ? "" : "\n");
    }
  }
  return lines;
}

}  // namespace faults
