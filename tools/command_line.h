// The parser of the command line, and what it knows of each command. Only few files
// include this: the parser takes most of the time to compile them.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>

#include "tools/command.h"
#include "tools/daemon.h"

namespace tool {

class CommandLine {
 public:
  CommandLine(const std::string& description, const std::string& name) : app(description, name) {}

  /// The command that is named by what was parsed.
  struct Found {
    const CLI::App* verb = nullptr;  // null if only a noun is given
    std::string name;                // "interface list"
  };
  Found Selected() const;

  CLI::App app;
  std::map<const CLI::App*, Verb> verbs;
  std::map<const CLI::App*, std::string> verb_of_noun;
  std::map<const CLI::Option*, Candidates> candidates;
  std::map<const CLI::App*, Daemon> undoable;
};

}  // namespace tool
