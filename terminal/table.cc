#include "terminal/table.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "terminal/printable.h"

namespace terminal {
namespace {

constexpr int kGap = 2;  // columns of blanks

void Measure(const Table::Row& row, std::vector<int>& widths) {
  widths.resize(std::max(widths.size(), row.size()));
  for (std::size_t i = 0; i < row.size(); ++i)
    widths[i] = std::max(widths[i], Width(Printable(row[i])));
}

std::string Line(const Table::Row& row, const std::vector<int>& widths) {
  std::string line;
  int pending = 0;  // blanks, written only when something follows
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::string cell = Printable(row[i]);
    line += std::string(static_cast<std::size_t>(pending), ' ') + cell;
    pending = widths[i] - Width(cell) + kGap;
  }
  return line;
}

bool HasColour() {
  const char* no_colour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool shows = terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
  return shows && (no_colour == nullptr || *no_colour == '\0') && isatty(STDOUT_FILENO) == 1;
}

}  // namespace

std::string Bold(const std::string& text) {
  return HasColour() && !text.empty() ? "\033[1m" + text + "\033[0m" : text;
}

Table& Table::Add(Row row) {
  if (!headings.empty()) row.resize(headings.size());
  for (std::string& cell : row)
    if (cell.empty()) cell = "-";
  rows.push_back(std::move(row));
  return *this;
}

std::string Table::Text() const {
  std::vector<int> widths;
  Measure(headings, widths);
  for (const Row& row : rows) Measure(row, widths);
  std::string text;
  if (!headings.empty()) text += Bold(Line(headings, widths)) + "\n";
  for (const Row& row : rows) text += Line(row, widths) + "\n";
  return text;
}

}  // namespace terminal
