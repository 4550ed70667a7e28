#include "tests/load/daemon_process.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace load {
namespace {

std::string PortOf(const std::string& url) { return url.substr(url.rfind(':') + 1); }

}  // namespace

DaemonProcess::DaemonProcess(std::string given_program) : program(std::move(given_program)) {
  Restart();
}

void DaemonProcess::Restart() {
  process.reset();
  process.emplace(std::vector<std::string>{program, network_manager_port, dapi_port});
  const std::string line = process->ReadLine();
  const std::size_t space = line.find(' ');
  if (space == std::string::npos) throw std::runtime_error(program + " does not serve");
  network_manager_port = PortOf(line.substr(0, space));
  dapi_port = PortOf(line.substr(space + 1));
  setenv("network_manager_url", line.substr(0, space).c_str(), 1);
  setenv("grpc_dapi_url", line.substr(space + 1).c_str(), 1);
}

}  // namespace load
