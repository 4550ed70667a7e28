// A file descriptor that is closed with the object.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace simulator {

class Descriptor {
 public:
  /// Takes over an open one; a negative number stands for none.
  explicit Descriptor(int opened = -1) : file(opened) {}
  ~Descriptor() { Close(); }

  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : file(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) Close();
    file = other.Release();
    return *this;
  }

  bool IsOpen() const { return file >= 0; }
  int Get() const { return file; }
  int Release() { return std::exchange(file, -1); }
  /// Leaves errno as it is.
  void Close() {
    const int error = errno;
    if (IsOpen()) close(Release());
    errno = error;
  }

 private:
  int file;
};

}  // namespace simulator
