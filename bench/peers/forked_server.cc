#include "bench/peers/forked_server.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace bench {

ForkedServer::ForkedServer(const std::function<void()>& serve) : child(fork()) {
  if (child < 0) throw std::runtime_error("cannot fork");
  if (child > 0) return;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  serve();
  _exit(0);
}

ForkedServer::~ForkedServer() {
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

}  // namespace bench
