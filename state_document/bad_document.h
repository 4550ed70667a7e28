// What is thrown for a state document that cannot be used.
#pragma once

#include <stdexcept>

namespace state_document {

/// what() reads "FILE:LINE: PATH: reason". Names in it are as the document has them:
/// they can contain any character.
class BadDocument : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace state_document
