// Both daemons in their own process. They answer every function of the table, every tenth
// call with a faulty answer.
//
// usage: soak_daemon NETWORK-MANAGER-PORT DAPI-PORT
//
// With port 0 the system chooses one, and the first list of interfaces has the three
// roles. Prints the two endpoints, then serves until its standard
// input ends or it is killed.
#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "support/functions.h"

namespace {

constexpr unsigned kOneIn = 10;

// One after the other: every status code, a rejection, a truncated reply.
support::Answer Faulty(unsigned turn, const support::Step& step) {
  const unsigned kind = turn % 18;
  if (kind < 16) return support::Failure(static_cast<grpc::StatusCode>(kind + 1));
  if (kind == 16 && step.replies_success) return {std::string("\x08\x00", 2)};
  return {"\x0a\x05x"};
}

support::Answer AnswerSometimesWrongly(const support::Step* step, const std::string& request) {
  static std::atomic<unsigned> answered = 0;
  const unsigned number = ++answered;
  if (step == nullptr || number % kOneIn != 0) return support::AnswerWell(step, request);
  return Faulty(number / kOneIn, *step);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::string host = "127.0.0.1:";
  support::Device device(host + argv[1], host + argv[2]);
  const std::string path = support::NetworkManagerPath("GetAvailableInterfaces");
  if (argv[1] == std::string("0")) device.network_manager->ScriptNext(path, device.interfaces);
  ScriptAlways(device, support::AllFunctions(), AnswerSometimesWrongly);
  device.network_manager->ForgetRequests();
  device.dapi->ForgetRequests();

  std::printf("%s %s\n", device.network_manager->Url().c_str(), device.dapi->Url().c_str());
  std::fflush(stdout);
  char byte = 0;
  while (read(STDIN_FILENO, &byte, 1) > 0) continue;
  return 0;
}
