// Linked to a program, takes the place of the system's log, which a test cannot read: lines go,
// with their priority, to the file that the variable SYSTEM_LOG names.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

void Append(int priority, const char* format, va_list arguments) {
  std::FILE* const file = std::fopen(std::getenv("SYSTEM_LOG"), "a");
  std::fprintf(file, "<%d>", priority);
  std::vfprintf(file, format, arguments);
  std::fputc('\n', file);
  std::fclose(file);
}

}  // namespace

extern "C" {

void syslog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Append(priority, format, arguments);
  va_end(arguments);
}

// What a program that is compiled with _FORTIFY_SOURCE calls.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
void __syslog_chk(int priority, int /*flag*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Append(priority, format, arguments);
  va_end(arguments);
}
}
