// The rescuer: a process that restores a checkpoint at its deadline. It runs in a session
// of its own, so that neither the end of networkgrpc nor the loss of its terminal ends it.
#pragma once

#include <functional>
#include <string>

#include "tools/checkpoint_file.h"

namespace tool {

/// The argument that makes networkgrpc the rescuer. The next one is the checkpoint's stem.
inline constexpr const char* kRescuerCommand = "__rescue";
/// The rescuer's descriptor of the checkpoint's file, with the lock.
inline constexpr int kLockDescriptor = 3;

/// Starts a rescuer, which has the lock from then on. Throws a Failure.
void StartRescuer(const CheckpointFile& file, int lock);

/// The rescuer; returns its exit status.
int RunRescuer(const std::string& stem);

/// Restores what KEY.restoring has, with growing pauses until it is done. The caller has
/// the lock. `report` is called after each attempt that failed, with the seconds until the
/// next one. False if the daemons answered each of many attempts, but did not do it.
bool RestoreUntilDone(const CheckpointFile& file,
                      const std::function<void(const std::string& problem, double pause)>& report);

}  // namespace tool
