// Wait for both daemons at start.
//
// The first call of NetworkgRPC resolves the role interfaces for the life of the process: if the
// network-manager daemon is absent then, the control interface stays unknown. So child processes
// make the trial calls. Forking is supported only before this process makes its first call. The
// alarm ends a child whose daemon accepts the call and never replies.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"

namespace {

bool BothAnswer() {
  const pid_t child = fork();
  if (child == 0) {
    alarm(5);
    std::string ignored;
    const bool answered = NetworkgRPC::GetHostname(ignored) && DantegRPC::GetName(ignored);
    _exit(answered ? 0 : 1);  // without destructors: they belong to the parent
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace

int main() {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!BothAnswer()) {
    if (std::chrono::steady_clock::now() > limit) return 1;
    // More attempts per second would delay the recovery of a connection, see docs/limits.md.
    std::this_thread::sleep_for(std::chrono::seconds(1));
  }
  // The first call of this process. If it fails nevertheless, only a restart helps.
  std::vector<NetworkgRPC::InterfaceInfo> control;
  if (!NetworkgRPC::GetControlInterfacesInfo(control)) return 1;
  std::cout << "ready, control interface " << control.front().ip << '\n';
}
