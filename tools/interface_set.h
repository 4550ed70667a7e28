// networkgrpc interface set: stores addresses, and can take them back.
#pragma once

#include "tools/tool.h"

namespace tool {

void AddInterfaceSet(Tool& tool, CLI::App& noun);

}  // namespace tool
