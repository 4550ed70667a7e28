// Several channels on a command line: ids, ranges of ids, and names that count.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ostrevan/grpcdapi.pb.h"

namespace tool {

/// What is wrong with ids, which are typed as "8", "1-8,12" or "all"; "" if nothing is.
std::string FaultOfIds(const std::string& ids);

/// The id, if one is typed alone: a command for one channel.
std::optional<std::int32_t> SingleId(const std::string& ids);

/// The channels with these ids, in the order of the ids. Throws a Failure if a channel is
/// not among `all`, which `direction` names ("receive"), or is there twice.
ostrevan::grpcdapi::Channels Selected(const ostrevan::grpcdapi::Channels& all,
                                      const std::string& ids, const std::string& direction);

/// A name for each of several channels: "{}" stands for the id of a channel; "{5}" is 5
/// for the first one, 6 for the next; "{{" and "}}" are braces.
class NamePattern {
 public:
  /// `argument` is what the text is called. Throws a Failure if the text is empty or has
  /// other braces.
  NamePattern(const std::string& argument, const std::string& text);

  std::string Name(std::int32_t id, std::size_t position) const;

 private:
  std::string pattern;
};

}  // namespace tool
