// The same request over D-Bus: a service that tells a name, a client of it, and a
// bus daemon of their own between them.
#pragma once

#include <memory>
#include <string>

namespace bench {

class Bus {
 public:
  /// Throws std::runtime_error when there is no bus to be had.
  Bus();
  ~Bus();

  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  /// Asks for the name.
  bool Ask(std::string& name);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts;
};

}  // namespace bench
