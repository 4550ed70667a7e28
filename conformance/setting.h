// The settings: how each is read, and what else it can be set to.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "conformance/session.h"

namespace conformance {

using ToRequest = std::function<Json(Session& it, const Json& from)>;

struct Setting {
  std::string method;  // that sets it
  /// The request that would set what is there: of the same object as `from`, a request, or
  /// of any if that is null. Throws Skipped if the device has none.
  ToRequest read;
  /// The request for another valid value than `from`. Throws Skipped if there is none.
  ToRequest other;
  bool must_accept;                // that value: no state of the device forbids it
  std::string text;                // its string, or its list of strings; "" if it has none
  bool has_id;                     // the object is one of several
  std::vector<std::string> needs;  // checks: of lists from which `other` chooses, of reloads
};

const std::vector<Setting>& AllSettings();

/// The check of this setting alone: "settings.Name".
std::string CheckOf(const Setting& setting);

/// Throws Skipped if a check has failed that changes of this setting need, CheckOf included.
void NeedAll(const Session& it, const Setting& setting);

/// Null if no method of this name sets anything.
const Setting* FindSetting(const std::string& method);

/// Whether all that was sent is there. What only the daemon knows the meaning of is left out.
bool Holds(const Json& there, const Json& sent);

/// A wired interface, and not the one for control if possible; one with an address in
/// effect if `is_active`. Throws Skipped if there is none.
Json AnyInterface(Session& it, bool is_active);

/// The stored configuration of an interface with another address, which no network has.
Json OtherAddress(Session& it, const Json& config);

}  // namespace conformance
