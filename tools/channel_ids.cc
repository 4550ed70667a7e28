#include "tools/channel_ids.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <sstream>
#include <vector>

#include "tools/call.h"

namespace tool {
namespace {

struct Range {
  std::int32_t first = 0;
  std::int32_t last = 0;
};

template <class Number>
std::optional<Number> Parse(const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

std::optional<Range> ParseRange(const std::string& text) {
  const std::size_t dash = text.find('-');
  const auto first = Parse<std::int32_t>(text.substr(0, dash));
  const auto last = dash == std::string::npos ? first : Parse<std::int32_t>(text.substr(dash + 1));
  if (!first || !last || *first > *last) return std::nullopt;
  return Range{*first, *last};
}

std::vector<std::optional<Range>> ParseRanges(const std::string& ids) {
  std::vector<std::optional<Range>> ranges;
  std::istringstream parts(ids + ",");
  for (std::string part; std::getline(parts, part, ',');) ranges.push_back(ParseRange(part));
  return ranges;
}

// What begins at `at` is replaced: its length, and the text for one channel.
struct Piece {
  std::size_t length;
  std::string text;
};

// Without a value if the braces mean nothing.
std::optional<Piece> PieceAt(const std::string& pattern, std::size_t at, std::int32_t id,
                             std::size_t position) {
  const char character = pattern[at];
  if (character != '{' && character != '}') return Piece{1, std::string(1, character)};
  if (pattern.compare(at + 1, 1, std::string(1, character)) == 0)
    return Piece{2, std::string(1, character)};
  const std::size_t end = pattern.find('}', at);
  if (character == '}' || end == std::string::npos) return std::nullopt;
  const std::string inside = pattern.substr(at + 1, end - at - 1);
  if (inside.empty()) return Piece{2, std::to_string(id)};
  const auto start = Parse<std::uint32_t>(inside);
  if (!start) return std::nullopt;
  std::string number = std::to_string(*start + std::uint64_t{position});
  // "{01}" counts 01, 02.
  number.insert(0, std::max(inside.size(), number.size()) - number.size(), '0');
  return Piece{inside.size() + 2, number};
}

}  // namespace

std::string FaultOfIds(const std::string& ids) {
  if (ids == "all" || SingleId(ids)) return "";
  const auto ranges = ParseRanges(ids);
  const bool fits = std::all_of(ranges.begin(), ranges.end(), [](auto it) { return bool(it); });
  return fits ? "" : "'" + ids + "' must be an id, ids and ranges such as 1-8,12, or all";
}

std::optional<std::int32_t> SingleId(const std::string& ids) { return Parse<std::int32_t>(ids); }

dapi::Channels Selected(const dapi::Channels& all, const std::string& ids,
                        const std::string& direction) {
  if (ids == "all") return all;
  const auto twice = [&ids](const std::string& name) {
    return "'" + ids + "' has " + name + " twice";
  };
  dapi::Channels selected;
  std::set<std::int32_t> seen;
  for (const auto& range : ParseRanges(ids))
    for (std::int64_t id = range->first; id <= range->last; ++id) {
      const auto* channel = FindById(all.channels(), static_cast<std::int32_t>(id));
      const std::string name = direction + " channel " + std::to_string(id);
      if (channel == nullptr)
        throw Failure(ExitStatus::kNotFound, name + " not found; see 'networkgrpc channel list'",
                      Daemon::kDante);
      if (!seen.insert(channel->id()).second) throw Failure(ExitStatus::kUsage, twice(name));
      *selected.add_channels() = *channel;
    }
  return selected;
}

NamePattern::NamePattern(const std::string& argument, const std::string& text) : pattern(text) {
  if (text.empty()) throw Failure(ExitStatus::kUsage, argument + " must not be empty");
  const std::string fault =
      argument + ": '" + text +
      "' has braces that are not {} for the id, {N} to count from N, {{ or }}";
  for (std::size_t at = 0; at < pattern.size();) {
    const auto piece = PieceAt(pattern, at, 0, 0);
    if (!piece) throw Failure(ExitStatus::kUsage, fault);
    at += piece->length;
  }
}

std::string NamePattern::Name(std::int32_t id, std::size_t position) const {
  std::string name;
  for (std::size_t at = 0; at < pattern.size();) {
    const auto piece = PieceAt(pattern, at, id, position);
    name += piece->text;
    at += piece->length;
  }
  return name;
}

}  // namespace tool
