#include "tools/routing_grid.h"

#include <algorithm>
#include <vector>

#include "terminal/printable.h"
#include "terminal/table.h"
#include "tools/routing_json.h"

namespace tool {
namespace {

constexpr int kWidth = 80;  // columns of a terminal
constexpr std::size_t kGroup = 16;
constexpr const char* kBlank = " ";  // a cell that stays empty

using Row = terminal::Table::Row;

std::vector<std::string> Sources(const Json& routing) {
  std::vector<std::string> sources;
  for (const Json& it : routing) {
    const std::string source = SourceText(it);
    if (!source.empty() && std::find(sources.begin(), sources.end(), source) == sources.end())
      sources.push_back(source);
  }
  return sources;
}

std::string Cell(const Json& entry, const std::string& source) {
  return source == SourceText(entry) ? "x" : ".";
}

std::string WideGrid(const Json& routing, const std::vector<std::string>& sources) {
  Row headings = {"RX", "NAME"};
  for (std::size_t i = 0; i < sources.size(); ++i) headings.push_back(std::to_string(i + 1));
  terminal::Table grid(headings);
  for (const Json& it : routing) {
    Row row = {it["rx_channel"].dump(), it["rx_name"]};
    for (const std::string& source : sources) row.push_back(Cell(it, source));
    grid.Add(row);
  }
  return grid.Text();
}

// Sources `first` to `last - 1`, one character each, with a blank between groups.
template <class Character>
std::string Characters(std::size_t first, std::size_t last, const Character& character) {
  std::string line;
  for (std::size_t i = first; i < last; ++i)
    line += (i != first && (i - first) % kGroup == 0 ? " " : "") + character(i);
  return line;
}

std::string NarrowGrid(const Json& routing, const std::vector<std::string>& sources,
                       std::size_t first, std::size_t last) {
  terminal::Table grid;
  const std::size_t digits = std::to_string(last).size();
  for (std::size_t digit = 0; digit < digits; ++digit) {
    const bool is_last = digit + 1 == digits;
    grid.Add({is_last ? "RX" : kBlank, is_last ? "NAME" : kBlank,
              Characters(first, last, [&](std::size_t i) {
                const std::string number = std::to_string(i + 1);
                const std::size_t padding = digits - number.size();
                return digit < padding ? std::string(" ") : number.substr(digit - padding, 1);
              })});
  }
  for (const Json& it : routing)
    grid.Add({it["rx_channel"].dump(), it["rx_name"],
              Characters(first, last, [&](std::size_t i) { return Cell(it, sources[i]); })});
  return grid.Text();
}

int WidthOfRowNames(const Json& routing) {
  terminal::Table names;
  names.Add({"RX", "NAME", "."});
  for (const Json& it : routing) names.Add({it["rx_channel"].dump(), it["rx_name"], "."});
  const std::string text = names.Text();
  return terminal::Width(text.substr(0, text.find('\n'))) - 1;
}

std::string NarrowGrids(const Json& routing, const std::vector<std::string>& sources) {
  const auto group = static_cast<int>(kGroup);
  const int groups = std::max((kWidth - WidthOfRowNames(routing) + 1) / (group + 1), 1);
  const std::size_t most = static_cast<std::size_t>(groups) * kGroup;
  std::string text;
  for (std::size_t first = 0; first < sources.size(); first += most)
    text += (first == 0 ? "" : "\n") +
            NarrowGrid(routing, sources, first, std::min(first + most, sources.size()));
  return text;
}

}  // namespace

std::string ShowGrid(const Json& result) {
  const Json& routing = result["routing"];
  const std::vector<std::string> sources = Sources(routing);
  const std::string wide = WideGrid(routing, sources);
  const bool fits = sources.empty() || terminal::Width(wide.substr(0, wide.find('\n'))) <= kWidth;
  std::string grid = fits ? wide : NarrowGrids(routing, sources);
  if (sources.empty()) return grid;
  terminal::Table legend({"COLUMN", "SOURCE"});
  for (std::size_t i = 0; i < sources.size(); ++i) legend.Add({std::to_string(i + 1), sources[i]});
  return grid + "\n" + legend.Text();
}

}  // namespace tool
