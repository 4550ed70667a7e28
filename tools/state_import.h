// networkgrpc import: applies a state document to the device.
#pragma once

#include "tools/tool.h"

namespace tool {

void AddImport(Tool& tool);

}  // namespace tool
