// A change of the state of a running device.
#pragma once

#include <string>

namespace simulator {

/// A member of the state document by its path, as messages write it:
/// "network.interfaces[lan0].speed". Entries of a list are named by their key.
struct StateChange {
  std::string path;
  std::string value;  // strings and names as they are, all else as JSON
};

}  // namespace simulator
