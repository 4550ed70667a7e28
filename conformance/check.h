// What is checked of a daemon: one table, in several files by subject.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "conformance/session.h"
#include "tools/daemon.h"

namespace conformance {

enum class Effect {
  kReads,
  kChanges,       // what it changes is restored after it
  kFactoryReset,  // only with --factory-reset
  kRestarts       // only with --restart
};

struct Check {
  std::string name;  // "settings.Name"; docs/conformance.md explains it
  tool::Daemon daemon;
  Effect effect;
  std::string expected;  // one sentence
  std::string advice;    // to whoever wrote the daemon
  std::function<void(Session&)> run;
};

using Checks = std::vector<Check>;

/// All, in the order in which they run.
Checks AllChecks();

// Each in the file of the same name.
Checks Answers();
Checks Lists();
Checks Settings();
Checks Reload();
Checks Wire();
Checks Connections();

/// The same check for each daemon: "wire.UnknownMethod" becomes "wire.UnknownMethod.Dante".
Checks OfBoth(const Checks& checks);

}  // namespace conformance
