#include "support/captured_stderr.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <stdexcept>

namespace support {

CapturedStderr::CapturedStderr()
    : original(dup(STDERR_FILENO)), file(memfd_create("stderr", MFD_CLOEXEC)) {
  std::fflush(stderr);
  if (original < 0 || file < 0 || dup2(file, STDERR_FILENO) < 0)
    throw std::runtime_error("cannot capture standard error");
}

CapturedStderr::~CapturedStderr() {
  dup2(original, STDERR_FILENO);
  close(original);
  close(file);
}

std::string CapturedStderr::Printed() const {
  std::fflush(stderr);
  std::string text;
  std::array<char, 4096> block{};
  off_t offset = 0;
  ssize_t size = 0;
  while ((size = pread(file, block.data(), block.size(), offset)) > 0) {
    text.append(block.data(), static_cast<std::size_t>(size));
    offset += size;
  }
  return text;
}

std::string CapturedStderr::Take() {
  std::string text = Printed();
  // The descriptor that writes shares this file's offset.
  if (ftruncate(file, 0) != 0 || lseek(file, 0, SEEK_SET) != 0)
    throw std::runtime_error("cannot empty the captured standard error");
  return text;
}

}  // namespace support
