#include "client/environment.h"

#include <cstdlib>

namespace client {

std::string Setting::Value() const {
  const char* value = std::getenv(variable);
  return value != nullptr ? value : fallback;
}

}  // namespace client
