#include "tests/faults/child_daemon.h"

#include <stdexcept>

namespace faults {

ChildDaemon::ChildDaemon(int port, const std::string& host)
    : address(host + ":" + std::to_string(port)), program({CHILD_DAEMON_PROGRAM, address}) {}

void ChildDaemon::Serve() {
  if (program.Ask("serve\n") != "ready")
    throw std::runtime_error("cannot start a daemon on " + address);
}

void ChildDaemon::Answer(const support::Request& request, const std::string& reply) {
  Script("answer", request, reply);
}

void ChildDaemon::Hang(const support::Request& request) { Script("hang", request, ""); }

void ChildDaemon::Script(const std::string& command, const support::Request& request,
                         const std::string& reply) {
  program.Ask(command + ' ' + request.path + ' ' + std::to_string(request.bytes.size()) + ' ' +
              std::to_string(reply.size()) + '\n' + request.bytes + reply);
}

bool ChildDaemon::WaitForRequests(std::size_t count) {
  return program.Ask("wait " + std::to_string(count) + '\n') == "yes";
}

void ChildDaemon::ForgetRequests() { program.Ask("forget\n"); }

}  // namespace faults
