// The first answer through the library.
#include "DantegRPC.h"
#include "bench/private_memory.h"

int main() {
  std::string name;
  const bool answered = DantegRPC::GetName(name);
  return bench::ReportFirstAnswer(answered && !name.empty());
}
