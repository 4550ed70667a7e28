#include "tools/commands.h"

namespace tool {

// In the order in which help lists them.
void AddCommands(Tool& tool) {
  AddInterface(tool);
  AddSwitch(tool);
  AddHostSettings(tool);
  AddDante(tool);
  AddChannel(tool);
  AddRouting(tool);
  AddStatus(tool);
  AddDoctor(tool);
  AddState(tool);
  AddWait(tool);
  AddWatch(tool);
  AddCheckpoint(tool);
  AddMetrics(tool);
  AddDevices(tool);
}

}  // namespace tool
