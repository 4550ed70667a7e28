#include "tests/faults/lines.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace faults {
namespace {

bool IsGrpc(const std::string& line) {
  const std::string levels = "EID";
  return line.size() > 5 && levels.find(line[0]) != std::string::npos &&
         std::all_of(line.begin() + 1, line.begin() + 5,
                     [](unsigned char c) { return std::isdigit(c) != 0; });
}

}  // namespace

Lines Separate(const std::string& printed) {
  Lines lines;
  std::istringstream in(printed);
  for (std::string line; std::getline(in, line);) {
    if (IsGrpc(line)) {
      ++lines.grpc;
    } else if (line.rfind("[libprotobuf ", 0) == 0) {
      ++lines.protobuf;
    } else {
      lines.own += line + (in.eof() ? "" : "\n");
    }
  }
  return lines;
}

}  // namespace faults
