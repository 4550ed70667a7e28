// The same request over D-Bus: a service that has a name, a client that reads it, and a
// bus daemon of their own between them.
#pragma once

#include <memory>
#include <string>

namespace bench {

class DBus {
 public:
  /// Throws std::runtime_error when no bus can be started.
  DBus();
  ~DBus();

  DBus(const DBus&) = delete;
  DBus& operator=(const DBus&) = delete;

  /// Reads the name.
  bool ReadName(std::string& name);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts;
};

}  // namespace bench
