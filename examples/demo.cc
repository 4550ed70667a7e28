// networkgrpc-demo: shows a device, changes three of its settings and reads each
// back.
//
// It changes the device for good, the control interface's address included: a
// device that is in use is not for demonstrations.
//
// The endpoints come from the environment, as for every application of the
// library. Exit status: 0 every change was verified; 1 a step failed, which is
// told on standard error; 2 it was given an argument.
#include <exception>
#include <iostream>
#include <string>

#include "examples/demo_changes.h"
#include "examples/demo_overview.h"
#include "examples/table.h"

namespace {

constexpr const char* kUsage =
    "Usage: networkgrpc-demo\n"
    "Shows a device, then renames its first transmit channel, subscribes its first\n"
    "receive channel to that and gives its control interface a static address; each\n"
    "change is read back, none is undone. The environment variables\n"
    "network_manager_url and grpc_dapi_url tell where the device's daemons are.\n";

int RefuseArguments(const std::string& argument) {
  const bool wants_help = argument == "--help" || argument == "-h";
  (wants_help ? std::cout : std::cerr) << kUsage;
  return wants_help ? 0 : 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) return RefuseArguments(argv[1]);
  demo::UseUtf8();
  demo::Table done({"Change", "Before", "After, read back"});
  std::string failure;
  try {
    demo::PrintOverview(std::cout);
    demo::MakeChanges(done);
  } catch (const std::exception& error) {
    failure = error.what();
  }
  // Also after a failure: the device keeps what was changed before it.
  if (!done.IsEmpty()) std::cout << "Changes\n" << done;
  std::cout << std::flush;
  if (failure.empty()) return 0;
  std::cerr << "networkgrpc-demo: FAILED: " << failure << '\n';
  return 1;
}
