// The parts of --help that describe more than options.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace simulator {

/// The sections after those of the command line, for terminal::Help.
std::string MoreHelp(const CLI::App& command, bool all);

}  // namespace simulator
