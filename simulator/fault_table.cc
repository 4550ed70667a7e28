#include "simulator/fault_table.h"

#include <algorithm>

namespace simulator {

void FaultTable::Add(const Fault& fault) {
  const std::lock_guard<std::mutex> lock(mutex);
  faults.push_back(fault);
}

template <class Condition>
void FaultTable::RemoveIf(Condition condition) {
  const std::lock_guard<std::mutex> lock(mutex);
  faults.erase(std::remove_if(faults.begin(), faults.end(), condition), faults.end());
}

void FaultTable::Clear(const std::string& method) {
  RemoveIf([&](const Fault& fault) { return method.empty() || fault.method == method; });
}

std::vector<Fault> FaultTable::List() const {
  const std::lock_guard<std::mutex> lock(mutex);
  return faults;
}

bool FaultTable::HasStop(Daemon daemon) const {
  const std::lock_guard<std::mutex> lock(mutex);
  return std::any_of(faults.begin(), faults.end(),
                     [daemon](const Fault& fault) { return Stops(fault, daemon); });
}

void FaultTable::ClearStop(Daemon daemon) {
  RemoveIf([daemon](const Fault& fault) { return Stops(fault, daemon); });
}

std::optional<Fault> FaultTable::Take(const std::string& method) {
  const std::lock_guard<std::mutex> lock(mutex);
  const auto found = std::find_if(faults.begin(), faults.end(), [&](const Fault& fault) {
    return fault.kind != FaultKind::kStop && Matches(fault.method, method);
  });
  if (found == faults.end()) return std::nullopt;
  const Fault taken = *found;
  if (found->times == 1) {
    faults.erase(found);
  } else if (found->times != 0) {
    --found->times;
  }
  return taken;
}

}  // namespace simulator
