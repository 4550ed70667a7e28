// The first answer through the library.
#include "DantegRPC.h"
#include "tests/footprint/private_memory.h"

int main() {
  std::string name;
  const bool answered = DantegRPC::GetName(name);
  return footprint::TellFirstAnswer(answered && !name.empty());
}
