// Answers calls as a recording has it.
//
// A call is found by its method and the bytes of its request. Calls of one kind get their
// answers in the order of the recording, and the last of them again when there are no
// more. A read does not get an answer from beyond the next recorded change while there is
// one before it; a change goes on to its place in the recording. So the same calls get the
// same answers, and a client that polls more or less often than the recorded one sees
// each change all the same.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "simulator/recording.h"

namespace simulator {

class Replay : public Backend {
 public:
  explicit Replay(std::vector<RecordedCall> recorded);

  /// A call that is not in the recording fails with UNIMPLEMENTED, and is reported on
  /// standard error.
  void Answer(const Query& query, const Done& done) override;
  void Ended(const Query&, const std::string&, const Outcome&) override {}

  /// The number of calls that were not in the recording.
  std::size_t Missing() const;

 private:
  struct Kind {
    std::vector<std::size_t> calls;  // where they are in the recording
    std::size_t next = 0;            // of `calls`
  };

  const RecordedCall* Find(const Query& query);

  const std::vector<RecordedCall> calls;
  mutable std::mutex mutex;
  std::map<std::pair<std::string, std::string>, Kind> kinds;  // by path and request
  std::size_t position = 0;                                   // behind the last change
  std::size_t missing = 0;
};

}  // namespace simulator
