// The names that stand for numbers in a state document.
#pragma once

#include <array>
#include <cstddef>

namespace state_document {

/// Names for the numbers from 0 on.
class Names {
 public:
  template <class... Name>
  constexpr explicit Names(Name... in_order) : names{in_order...}, count(sizeof...(in_order)) {}

  constexpr std::size_t size() const { return count; }
  constexpr const char* operator[](std::size_t number) const { return names[number]; }
  constexpr const char* const* begin() const { return names.data(); }
  constexpr const char* const* end() const { return names.data() + count; }

 private:
  static constexpr std::size_t kMost = 17;

  std::array<const char*, kMost> names;
  std::size_t count;
};

// The first four by the numbers of the schemas in proto/.
inline constexpr Names kAddressingModes("dynamic", "static", "dhcp-only", "link-local-only");
inline constexpr Names kLinkSpeeds("none", "10", "100", "1000");  // Mbit/s
inline constexpr Names kClocks("none", "passive", "undisciplined", "disciplined");
inline constexpr Names kEncodings("L24", "L16");
inline constexpr Names kFaults("none", "status", "reject", "empty", "malformed", "oversize",
                               "freeze", "drop", "stop", "ignore", "goaway");
/// By gRPC's status codes.
inline constexpr Names kStatuses("OK", "CANCELLED", "UNKNOWN", "INVALID_ARGUMENT",
                                 "DEADLINE_EXCEEDED", "NOT_FOUND", "ALREADY_EXISTS",
                                 "PERMISSION_DENIED", "RESOURCE_EXHAUSTED", "FAILED_PRECONDITION",
                                 "ABORTED", "OUT_OF_RANGE", "UNIMPLEMENTED", "INTERNAL",
                                 "UNAVAILABLE", "DATA_LOSS", "UNAUTHENTICATED");

}  // namespace state_document
