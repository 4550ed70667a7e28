// The results, for people and for CI.
#pragma once

#include <string>

#include "conformance/run.h"

namespace conformance {

/// Groups, then what failed and how, then what was skipped and why.
std::string TextReport(const Run& run);

/// One object; docs/conformance.md describes it.
std::string JsonReport(const Run& run);

/// JUnit's XML, one test case for each check.
std::string JunitReport(const Run& run);

/// A line for each check: its name and what is expected.
std::string List(const Checks& checks);

}  // namespace conformance
