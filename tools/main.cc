// networkgrpc: reads and changes a device's settings from a shell.
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "tools/guardian.h"
#include "tools/tool.h"

int main(int argc, char** argv) {
  // Not for people: the shells' completion, and the process that puts an
  // interface's configuration back.
  const std::string first = argc > 1 ? argv[1] : "";
  if (first == tool::guardian::kCommand) return tool::guardian::Main();

  tool::Tool tool;
  tool::AddInterface(tool);
  tool::AddSwitch(tool);
  tool::AddHost(tool);
  tool::AddDante(tool);
  tool::AddChannel(tool);
  tool::AddRouting(tool);
  tool::AddStatus(tool);
  tool::AddDoctor(tool);
  tool::AddState(tool);
  tool::AddWatch(tool);
  if (first == "__complete") return tool.Complete({argv + 2, argv + argc});

  const int status = tool.Main(argc, argv);
  if (tool.leave_at_once) {
    std::fflush(nullptr);
    _exit(status);
  }
  return status;
}
