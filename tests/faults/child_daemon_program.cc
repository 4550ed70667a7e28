// The program that ChildDaemon runs: a scripted daemon for the address given as its
// argument. It reads commands from standard input, answers each with one line, and ends
// with the test that started it. The first command is "serve"; then:
//   answer PATH REQUEST_SIZE REPLY_SIZE | hang PATH REQUEST_SIZE 0 | wait COUNT | forget
// The bytes of the request and of the reply follow the line.
#include <signal.h>
#include <sys/prctl.h>

#include <iostream>
#include <sstream>
#include <string>

#include "support/scripted_daemon.h"

namespace {

std::string ReadBytes(std::size_t size) {
  std::string bytes(size, '\0');
  std::cin.read(bytes.data(), static_cast<std::streamsize>(size));
  return bytes;
}

std::string Run(support::ScriptedDaemon& daemon, const std::string& line) {
  std::istringstream words(line);
  std::string verb;
  words >> verb;
  if (verb == "wait") {
    std::size_t count = 0;
    words >> count;
    return daemon.WaitForRequests(count) ? "yes" : "no";
  }
  if (verb == "forget") {
    daemon.TakeRequests();
    return "ok";
  }
  std::string path;
  std::size_t request_size = 0;
  std::size_t reply_size = 0;
  words >> path >> request_size >> reply_size;
  const std::string request = ReadBytes(request_size);
  support::Answer answer{ReadBytes(reply_size)};
  answer.hangs = verb == "hang";
  daemon.ScriptFor({path, request}, answer);
  return "ok";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  // A frozen process does not notice the end of its input.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::string line;
  if (!std::getline(std::cin, line) || line != "serve") return 2;
  support::ScriptedDaemon daemon(argv[1]);
  std::cout << "ready" << std::endl;
  while (std::getline(std::cin, line)) std::cout << Run(daemon, line) << std::endl;
  return 0;
}
