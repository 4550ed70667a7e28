// Survive the restart of a daemon: repeat a read; after a failed change, read back first.
//
// A call fails if the daemon ends during it or has just been restarted, and calls can fail for up
// to 10 s after its start (docs/reliability.md). A read can simply be repeated, with a pause. A
// change that failed may have been made, so it is repeated only if the value is not read back.
#include <chrono>
#include <iostream>
#include <string>
#include <thread>

#include "DantegRPC.h"

namespace {

template <class Value>
bool Read(bool (*read)(Value&), Value& value) {
  for (int attempt = 0; attempt < 15; ++attempt) {
    if (read(value)) return true;
    std::this_thread::sleep_for(std::chrono::seconds(1));
  }
  return false;
}

enum class Outcome { kDone, kNotDone, kUnknown };

template <class Value>
Outcome Change(bool (*read)(Value&), bool (*write)(const Value&), const Value& value) {
  if (write(value)) return Outcome::kDone;
  Value now{};
  if (!Read(read, now)) return Outcome::kUnknown;
  if (now == value) return Outcome::kDone;  // made, but the reply was lost
  if (write(value)) return Outcome::kDone;
  if (!Read(read, now)) return Outcome::kUnknown;
  return now == value ? Outcome::kDone : Outcome::kNotDone;
}

}  // namespace

int main() {
  std::string name;
  if (!Read(DantegRPC::GetName, name)) {
    std::cout << "the daemon is away\n";
    return 1;
  }
  std::cout << "the name is " << name << std::endl;
  switch (Change<std::string>(DantegRPC::GetName, DantegRPC::SetName, "Hall")) {
    case Outcome::kDone:
      std::cout << "the name is Hall\n";
      return 0;
    case Outcome::kNotDone:
      std::cout << "the name was not changed\n";
      return 1;
    case Outcome::kUnknown:
      std::cout << "the name may have been changed\n";
      return 1;
  }
}
