// The file of a checkpoint. Its name says what is to happen, so that one rename or removal
// decides it, whichever process is first:
//
//   KEY.open       restored at its deadline; removing it confirms the change
//   KEY.restoring  being restored, or to be; removed when that is done
//   KEY.progress   how far that is
//
// Each begins with a checksum. The process that will restore it holds a lock on the file. Without a
// lock it is abandoned. KEY stands for the endpoints of the device, so that the next checkpoint has
// the same name: a Witness distinguishes them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/json.h"

namespace tool {

/// Seconds of a clock that no one sets, and that goes on while the machine sleeps.
double SecondsSinceBoot();

class Witness;

class CheckpointFile {
 public:
  explicit CheckpointFile(std::string path_of_key) : stem(std::move(path_of_key)) {}

  /// Of the device that this process calls, whether there is one or not.
  static CheckpointFile OfThisDevice();
  static std::vector<CheckpointFile> All();

  const std::string& Stem() const { return stem; }
  bool IsOpen() const;
  bool IsRestoring() const;
  bool Exists() const { return IsOpen() || IsRestoring(); }
  /// Whether it is this one, and open.
  bool IsOpen(const Witness& witness) const;
  /// Whether a process holds the lock.
  bool IsAttended() const;

  /// Creates it, and returns a descriptor with the lock. Throws if there is one.
  int Create(const Json& content) const;
  /// The lock of an existing one, for this process; -1 if another has it, or it is gone.
  int Lock() const;
  /// Throws if it cannot be read.
  Json Read() const;

  /// These decide: false if another was first, or there is none. What removes a file throws
  /// if it cannot.
  bool Confirm(const Witness& witness) const;
  bool BeginRestoring(const Witness& witness) const;
  /// For the process that has the lock: what was before is restored, or is not wanted.
  void RemoveRestored() const;
  void RemoveUnwanted() const;
  /// Makes the process that waits or pauses look again.
  void Touch() const;

  void SaveProgress(bool must_reload, const std::string& problem) const;
  /// {"must_reload", "problem"}
  Json Progress() const;

 private:
  friend class Witness;

  std::string Folder() const;
  void Flush() const;

  std::string Open() const { return stem + ".open"; }
  std::string Restoring() const { return stem + ".restoring"; }
  std::string ProgressFile() const { return stem + ".progress"; }

  std::string stem;
};

/// Made while there is a checkpoint, to know afterwards what has become of it.
class Witness {
 public:
  /// Throws if there is one that cannot be opened.
  explicit Witness(const CheckpointFile& file);
  /// Of the file that is open as this descriptor, which it closes.
  explicit Witness(int opened) : descriptor(opened) {}
  ~Witness();

  Witness(const Witness&) = delete;
  Witness& operator=(const Witness&) = delete;

  /// Whether it was removed. Another one of the same name may have been made since.
  bool SawRemoval() const;
  /// Whether it was removed because what was before is restored.
  bool SawRestoration() const;

 private:
  const int descriptor;
};

}  // namespace tool
