// networkgrpc: shows and changes the settings of a device from a shell.
#include <fcntl.h>

#include <csignal>
#include <cstdio>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "terminal/arenas.h"
#include "tools/commands.h"
#include "tools/each_device.h"
#include "tools/failure.h"
#include "tools/rescuer.h"

namespace {

// Otherwise a socket could become standard output, and receive what is printed.
bool OpenStandardDescriptors() {
  for (const int descriptor : {0, 1, 2})
    if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) != descriptor) return false;
  return true;
}

}  // namespace

int main(int argc, char** argv) try {
  terminal::FixNumberOfArenas();
  std::signal(SIGXFSZ, SIG_IGN);  // a file that would be too large is an error, reported
  if (!OpenStandardDescriptors()) return static_cast<int>(tool::ExitStatus::kFailed);
  // Some commands are not for people: completion by shells, the rescuer, and the process
  // for one of several devices.
  const std::string first = argc > 1 ? argv[1] : "";
  if (first == tool::kRescuerCommand && argc == 3) return tool::RunRescuer(argv[2]);

  tool::Tool tool;
  if (first == tool::kOneDeviceCommand && argc > 2) {
    tool::EndWithParent();
    tool.only_device = argv[2];
    argv += 2;
    argc -= 2;
  }
  tool::AddCommands(tool);
  if (first == "__complete") return tool.Complete({argv + 2, argv + argc});

  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (const std::optional<int> status = tool.Parse(arguments)) return *status;
  return tool.Run(arguments);
} catch (const std::bad_alloc&) {
  std::fputs("networkgrpc: out of memory\n", stderr);
  return static_cast<int>(tool::ExitStatus::kFailed);
}
