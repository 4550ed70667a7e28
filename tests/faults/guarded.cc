#include "tests/faults/guarded.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

namespace faults {
namespace {

std::size_t Page() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

}  // namespace

Guarded::Guarded(std::size_t wanted_size) : size(wanted_size) {
  void* const mapped = mmap(nullptr, 3 * Page(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED || size > Page()) throw std::runtime_error("no guarded memory");
  whole = static_cast<char*>(mapped);
  begin = whole + Page();
  end = begin + Page() - size;
  if (mprotect(begin, Page(), PROT_READ | PROT_WRITE) != 0)
    throw std::runtime_error("no guarded memory");
  std::memset(begin, '#', Page());
}

Guarded::~Guarded() { munmap(whole, 3 * Page()); }

}  // namespace faults
