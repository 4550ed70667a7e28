// Memory whose neighbours cannot be touched: a byte read or written beyond it
// ends the process.
#pragma once

#include <cstddef>
#include <string>

namespace faults {

class Guarded {
 public:
  /// Room for `size` bytes, at most a page, which end where the next page may not
  /// be touched.
  explicit Guarded(std::size_t size);
  ~Guarded();

  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  /// Its last `size` bytes.
  char* End() const { return end; }
  /// The same number of bytes at its beginning, which no page before may be
  /// touched from either.
  char* Begin() const { return begin; }
  std::string Bytes(const char* from) const { return {from, size}; }

 private:
  std::size_t size;
  char* whole;
  char* begin;
  char* end;
};

}  // namespace faults
