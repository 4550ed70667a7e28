#include "simulator/replay.h"

#include <algorithm>
#include <iostream>

namespace simulator {

Replay::Replay(std::vector<RecordedCall> recorded) : calls(std::move(recorded)) {
  for (std::size_t i = 0; i < calls.size(); ++i)
    kinds[{calls[i].path, calls[i].request}].calls.push_back(i);
}

void Replay::Answer(const Query& query, const Done& done) {
  const RecordedCall* found = nullptr;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    found = Find(query);
    if (found == nullptr) ++missing;
  }
  if (found != nullptr) return done(found->outcome);
  std::cerr << "networkgrpc-simulator: not in the recording: " + query.name + '\n';
  done({{grpc::StatusCode::UNIMPLEMENTED, "not in the recording"}, "", false});
}

const RecordedCall* Replay::Find(const Query& query) {
  const auto found = kinds.find({query.path, query.request});
  if (found == kinds.end()) return nullptr;
  Kind& kind = found->second;
  while (kind.next < kind.calls.size() && kind.calls[kind.next] < position) ++kind.next;
  const bool has_more = kind.next < kind.calls.size();
  const bool has_earlier = kind.next > 0;
  const std::size_t next = has_more ? kind.calls[kind.next] : calls.size();
  const RecordedCall& call = calls[has_more ? next : kind.calls.back()];
  if (call.is_change) {
    if (has_more) {
      ++kind.next;
      position = next + 1;
    }
    return &call;
  }
  const auto change =
      std::find_if(calls.begin() + static_cast<std::ptrdiff_t>(position), calls.end(),
                   [](const RecordedCall& it) { return it.is_change; });
  const bool is_beyond = next > static_cast<std::size_t>(change - calls.begin());
  if (!has_more || (is_beyond && has_earlier)) return &calls[kind.calls[kind.next - 1]];
  ++kind.next;
  return &call;
}

std::size_t Replay::Missing() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return missing;
}

}  // namespace simulator
