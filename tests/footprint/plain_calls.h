// Every function of the library, called as an application calls it and with
// nothing around the call, so that what is measured is the library's.
#pragma once

#include <vector>

namespace footprint {

struct PlainCall {
  const char* name;  // as in the table of functions; the daemon answers its requests
  bool (*call)();    // gives whether it was done
};

const std::vector<PlainCall>& PlainCalls();

}  // namespace footprint
