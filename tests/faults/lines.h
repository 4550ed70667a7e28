// Standard error holds the library's own lines and those of the runtimes below
// it; only the first are promised.
#pragma once

#include <string>

namespace faults {

struct Lines {
  std::string own;   // the library's, in order
  int grpc = 0;      // begin with one of E, I, D and a date: "E1121 03:44:18 ..."
  int protobuf = 0;  // begin with "[libprotobuf "
};

Lines Separate(const std::string& printed);

}  // namespace faults
