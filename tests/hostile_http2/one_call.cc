// Calls one function of the library, given by its index in the table of functions.
// Exit status 0, whatever the call returns.
#include <cstdlib>

#include "support/functions.h"

int main(int argc, char** argv) {
  const auto functions = support::AllFunctions();
  const std::size_t number = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : functions.size();
  if (number >= functions.size()) return 2;
  std::string outputs;
  functions[number].call(outputs);
  return 0;
}
