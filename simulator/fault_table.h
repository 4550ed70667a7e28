// The faults of one device.
//
// Threads: every function may be called from several threads at once.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "simulator/fault.h"
#include "simulator/json.h"

namespace simulator {

class FaultTable {
 public:
  /// Adds a fault behind the others: of several for one method the first acts,
  /// until it has acted Fault::times. The fault must have passed Check.
  void Add(const Fault& fault);
  /// Removes the faults given for exactly this method or pattern; "" removes all.
  void Clear(const std::string& method);
  std::vector<Fault> List() const;

  /// True if a fault stops this daemon.
  bool HasStop(Daemon daemon) const;
  void ClearStop(Daemon daemon);

  /// Milliseconds without a call after which this daemon closes a connection; 0: never.
  std::uint32_t IdleLimit(Daemon daemon) const;
  /// True if a fault is given for exactly this method or pattern.
  bool Has(const std::string& method) const;

  /// The fault of this call, whose method is given by its full name. Counts it.
  std::optional<Fault> Take(const std::string& method, const Json& request);

 private:
  template <class Condition>
  void RemoveIf(Condition condition);

  mutable std::mutex mutex;
  std::vector<Fault> faults;
};

}  // namespace simulator
