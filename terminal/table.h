// Columns that line up whatever the script, and bold where it can be seen.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace terminal {

/// The string in bold if standard output is a terminal that shows colour and
/// NO_COLOR is unset or empty; else unchanged.
std::string Bold(const std::string& text);

class Table {
 public:
  using Row = std::vector<std::string>;

  explicit Table(Row headings_or_none = {}) : headings(std::move(headings_or_none)) {}

  Table& Add(Row row);

  /// One line per row, each cell as Printable makes it, an empty one as "-", so that
  /// scripts can cut columns. Cells are two columns apart; no blanks end a line.
  std::string Text() const;

 private:
  Row headings;
  std::vector<Row> rows;
};

}  // namespace terminal
