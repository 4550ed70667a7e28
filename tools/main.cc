// networkgrpc: shows and changes the settings of a device from a shell.
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tools/rollback.h"
#include "tools/tool.h"

int main(int argc, char** argv) {
  // Two commands are not for people: completion by shells, and the rollback
  // process.
  const std::string first = argc > 1 ? argv[1] : "";
  if (first == tool::kRollbackCommand) return tool::RunRollback();

  tool::Tool tool;
  tool::AddInterface(tool);
  tool::AddSwitch(tool);
  tool::AddHostSettings(tool);
  tool::AddDante(tool);
  tool::AddChannel(tool);
  tool::AddRouting(tool);
  tool::AddStatus(tool);
  tool::AddDoctor(tool);
  tool::AddState(tool);
  tool::AddWatch(tool);
  if (first == "__complete") return tool.Complete({argv + 2, argv + argc});

  const int status = tool.Main(argc, argv);
  if (tool.exit_at_once) {
    std::fflush(nullptr);
    _exit(status);
  }
  return status;
}
