// A folder for the control socket where the system has none for this user.
#pragma once

#include <string>

namespace simulator {

class PrivateFolder {
 public:
  /// Makes one with mode 0700 in TMPDIR, or in /tmp if that is not set. Throws
  /// std::runtime_error.
  PrivateFolder();
  /// Removes it if it is empty.
  ~PrivateFolder();

  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  const std::string& Path() const { return path; }

 private:
  std::string path;
};

}  // namespace simulator
