// Runs a command on several devices, each in a process of its own.
#pragma once

#include <string>
#include <vector>

#include "tools/devices.h"

namespace tool {

/// networkgrpc __device NAME ARGUMENT...: the process for one of several devices, whatever
/// the arguments name. It ends with the process that started it.
inline constexpr const char* kOneDeviceCommand = "__device";
void EndWithParent();

/// What such a process has printed, and its exit status.
struct Ended {
  std::string output;
  std::string errors;
  int status = 0;
};
Ended RunOn(const std::string& device, const std::vector<std::string>& arguments);

enum class Form {
  kText,         // a heading, then the output of the device
  kJson,         // one line per device
  kLines,        // lines as they come, with the device before each
  kJsonAsComes,  // JSON lines as they come
};

/// Prints what the command prints for each device, in the order given. One that takes
/// three seconds longer than a later one is printed when it has ended. Returns the worst exit
/// status.
int RunOnEach(const std::vector<Device>& devices, const std::vector<std::string>& arguments,
              Form form);

}  // namespace tool
