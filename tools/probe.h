// Whether and how fast a daemon replies.
#pragma once

#include <optional>

#include "tools/daemon.h"
#include "tools/failure.h"

namespace tool {

/// Of a cheap call.
struct Reply {
  std::optional<Failure> failure;
  double seconds = 0;
};

/// The first call connects; the second measures how fast the daemon replies.
Reply Probe(Daemon daemon);

}  // namespace tool
