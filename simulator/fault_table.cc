#include "simulator/fault_table.h"

#include <algorithm>

namespace simulator {
namespace {

// `fields` is the text of an object, or empty.
bool HasFields(const Json& request, const std::string& fields) {
  if (fields.empty()) return true;
  if (!request.is_object()) return false;
  const Json wanted = Json::parse(fields);
  for (const auto& [name, value] : wanted.items())
    if (request.value(name, Json()) != value) return false;
  return true;
}

}  // namespace

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

std::uint32_t FaultTable::IdleLimit(Daemon daemon) const {
  const std::lock_guard<std::mutex> lock(mutex);
  for (const Fault& fault : faults)
    if (IsOfDaemon(fault, FaultKind::kGoaway, daemon)) return fault.delay_ms;
  return 0;
}

bool FaultTable::Has(const std::string& method) const {
  const std::lock_guard<std::mutex> lock(mutex);
  return std::any_of(faults.begin(), faults.end(),
                     [&](const Fault& fault) { return fault.method == method; });
}

std::optional<Fault> FaultTable::Take(const std::string& method, const Json& request) {
  const std::lock_guard<std::mutex> lock(mutex);
  const auto found = std::find_if(faults.begin(), faults.end(), [&](Fault& fault) {
    const bool matches = fault.kind != FaultKind::kStop && fault.kind != FaultKind::kGoaway &&
                         Matches(fault.method, method) && HasFields(request, fault.when);
    if (!matches || fault.after == 0) return matches;
    --fault.after;
    return false;
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
