// The tool's address book: a TOML file with one table for each device.
//
//   [devices.stage-left]
//   network_manager = "127.0.0.1:50151"
//   dapi = "127.0.0.1:50152"
#pragma once

#include <string>

namespace simulator {

struct BookEntry {
  std::string name;
  std::string network_manager;  // URL
  std::string dapi;             // URL
};

/// The lines of one entry.
std::string ToToml(const BookEntry& entry);

/// Adds the entry to the file, or replaces both URLs of the entry of that name; all
/// else in the file stays. The file is replaced as a whole or not at all; simulators
/// that write to it at the same time wait for each other. Finds entries that are
/// written as ToToml does. Throws std::runtime_error.
void WriteToBook(const std::string& file, const BookEntry& entry);

}  // namespace simulator
