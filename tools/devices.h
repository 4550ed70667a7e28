// The devices that a file names: where the daemons of each are found.
#pragma once

#include <string>
#include <vector>

namespace tool {

struct Device {
  std::string name;
  std::string network_manager;  // endpoints; on `host`, unless that is empty
  std::string dapi;
  std::string host;  // through ssh
  std::string file;  // that names it
};

/// The endpoints without a file: the library's defaults.
Device DeviceOf(const std::string& name, const std::string& host);

/// All, in the order of their names: the user's, and the system's that the user's file
/// does not name. Throws a Failure that names file and line.
std::vector<Device> ReadDevices();

/// Those of a list such as "stage-left,hall", in that order and each once, or "all".
std::vector<Device> FindDevices(const std::string& names);

/// Throws a Failure (usage) if ssh could take `host` for an option.
void CheckHost(const std::string& host);

}  // namespace tool
