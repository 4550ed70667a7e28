// What is thrown for a state document that is wrong.
#pragma once

#include <stdexcept>

namespace simulator {

/// what() reads "FILE:LINE: reason".
class BadDocument : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace simulator
