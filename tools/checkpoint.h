// A change that is undone unless it is confirmed in time.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/checkpoint_file.h"
#include "tools/daemon.h"
#include "tools/failure.h"
#include "tools/json.h"

namespace tool {

/// Lifetime: one per process, made before the change. If the process ends, the rescuer
/// restores at the deadline.
class Checkpoint {
 public:
  /// Restores the settings of one daemon, or of both for kNone. `of_command` is what people
  /// are shown, `limit` the seconds until the deadline.
  Checkpoint(Daemon of, std::string of_command, double limit);
  ~Checkpoint();

  Checkpoint(const Checkpoint&) = delete;
  Checkpoint& operator=(const Checkpoint&) = delete;

  /// Reads what is to be restored, unless that is done. Throws if there is a checkpoint for
  /// this device already.
  void Prepare();
  /// Prepares, and says what cannot be restored exactly.
  void Announce();
  /// Starts the rescuer and the time, before the first change. Calls end at the deadline.
  void Begin();
  /// The same; the rescuer restores as soon as this process has ended.
  void BeginForThisProcess();
  bool HasBegun() const { return witness.has_value(); }
  double SecondsLeft() const;
  /// Whether it is confirmed, or there is time left for that.
  bool MayBeKept() const;

  /// Asks whether to keep the change. Without a terminal it stays open, and the result is
  /// when it ends, in UTC; else "". Throws if it was restored.
  std::string Settle();
  /// Nothing was changed.
  void Discard() const;
  /// Restores now, and adds to the failure what has become of the change.
  void RestoreAfter(Failure& failure);

 private:
  void Begin(pid_t process);
  void Discard(const Witness& created) const;
  bool Waits();
  bool IsConfirmed() const;
  bool IsOpen() const;
  void Restore();
  [[noreturn]] void RestoreAndThrow(const std::string& why);

  const CheckpointFile file;
  const Daemon daemon;
  const std::string command;
  const double seconds;
  double deadline = 0;
  Json snapshot;
  std::optional<Witness> witness;
  int lock = -1;  // of this process, once the rescuer has been killed
};

/// Restores a checkpoint that is open, being restored or abandoned, and says on standard
/// error what holds it up. Throws if it cannot, or if the change was confirmed. The witness
/// was made before: at the deadline the rescuer may be done first.
void RestoreNow(const CheckpointFile& file, const Witness& witness, int lock = -1);

/// A line for each abandoned checkpoint.
std::vector<std::string> AbandonedCheckpoints();

}  // namespace tool
