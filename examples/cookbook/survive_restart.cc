// Survive the restart of a daemon: repeat a read once; after a failed change, read back first.
//
// After a quick restart the first call uses the old connection and fails; the next one reconnects.
// A read can simply be repeated. A change that failed may have been made: repeating it blindly
// could overwrite what somebody else has set meanwhile.
#include <iostream>
#include <string>

#include "DantegRPC.h"

namespace {

template <class Value>
bool ReadTwice(bool (*read)(Value&), Value& value) {
  return read(value) || read(value);
}

enum class Outcome { kDone, kNotDone, kUnknown };

template <class Value>
Outcome Change(bool (*read)(Value&), bool (*write)(const Value&), const Value& value) {
  if (write(value)) return Outcome::kDone;
  Value now{};
  if (!ReadTwice(read, now)) return Outcome::kUnknown;
  if (now == value) return Outcome::kDone;  // made, but the reply was lost
  if (write(value)) return Outcome::kDone;
  // Rejected, or failed again.
  return ReadTwice(read, now) && now != value ? Outcome::kNotDone : Outcome::kUnknown;
}

}  // namespace

int main() {
  std::string name;
  if (!ReadTwice(DantegRPC::GetName, name)) {
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
