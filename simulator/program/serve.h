// Runs devices until a signal or the end of a process or command.
#pragma once

#include <exception>

#include "simulator/program/program_options.h"

namespace simulator {

inline constexpr int kFailed = 1;

/// Returns the exit status. Throws std::runtime_error.
int Serve(const ProgramOptions& options);

/// In one line on standard error.
void PrintError(const std::exception& error);

}  // namespace simulator
