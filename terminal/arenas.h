// Memory arenas of the C library, for programs that use gRPC.
#pragma once

#include <malloc.h>

#include <cstdlib>

namespace terminal {

/// Fixes the number of arenas. Otherwise glibc looks up the number of processors in
/// /sys when it needs another arena; where /sys is not mounted, a successful malloc
/// then leaves ENOENT in errno, and gRPC 1.51, which reads errno late, reports a
/// first connection as failed. To be called before any thread is started. The
/// variable MALLOC_ARENA_MAX, if it is set, is in effect instead.
inline void FixNumberOfArenas() {
#ifdef M_ARENA_MAX
  constexpr int kArenas = 8;
  if (std::getenv("MALLOC_ARENA_MAX") == nullptr) mallopt(M_ARENA_MAX, kArenas);
#endif
}

}  // namespace terminal
