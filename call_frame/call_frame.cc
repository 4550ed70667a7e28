#include "call_frame/call_frame.h"

#include <cstdarg>
#include <cstdio>

namespace call_frame {

void Print(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}

bool Frame::Fail(const char* line) const {
  if (reset != nullptr) *reset = false;
  if (line != kNoLine) Print(line, name);
  return false;
}

bool Frame::Caught(const std::exception& error) const {
  if (reset != nullptr) *reset = false;
  switch (exception_line) {
    case ExceptionLine::kNameAndText:
      Print("libNetworkgRPC: C++ exception in %s(): %s\n", name, error.what());
      break;
    case ExceptionLine::kNameOnly:
      Print("libNetworkgRPC: ERROR: exception in %s\n", name);
      break;
  }
  return false;
}

}  // namespace call_frame
