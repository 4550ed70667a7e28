// All commands of the tool.
#pragma once

#include "tools/tool.h"

namespace tool {

// Each in the file of the same name.
void AddInterface(Tool& tool);
void AddSwitch(Tool& tool);
void AddHostSettings(Tool& tool);
void AddDante(Tool& tool);
void AddChannel(Tool& tool);
void AddRouting(Tool& tool);
void AddStatus(Tool& tool);
void AddDoctor(Tool& tool);
void AddState(Tool& tool);
void AddWait(Tool& tool);
void AddWatch(Tool& tool);
void AddCheckpoint(Tool& tool);
void AddMetrics(Tool& tool);
void AddDevices(Tool& tool);

void AddCommands(Tool& tool);

}  // namespace tool
