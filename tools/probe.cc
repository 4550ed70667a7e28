#include "tools/probe.h"

#include <chrono>

#include "tools/dante.h"
#include "tools/host_settings.h"

namespace tool {
namespace {

void CallOnce(Daemon daemon) {
  if (daemon == Daemon::kDante)
    ReadDeviceName();
  else
    ReadHostname();
}

}  // namespace

Reply Probe(Daemon daemon) {
  Reply reply;
  try {
    CallOnce(daemon);
    const auto start = std::chrono::steady_clock::now();
    CallOnce(daemon);
    reply.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  } catch (const Failure& failure) {
    reply.failure = failure;
  }
  return reply;
}

}  // namespace tool
