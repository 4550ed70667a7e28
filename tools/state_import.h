// networkgrpc import: gives a device the state of a document.
#pragma once

#include "tools/tool.h"

namespace tool {

void AddImport(Tool& tool);

}  // namespace tool
