// Lines up UTF-8 texts in columns of a terminal.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace demo {

/// Makes the functions below read texts as UTF-8; for the start of main.
void UseUtf8();

/// The text as a terminal can show it in one line: control characters, which
/// could move its cursor, and broken UTF-8 become "?".
std::string Printable(const std::string& text);

/// How many columns a printable text takes: none for a combining accent, two
/// for a wide ideograph.
int Width(const std::string& printable);

class Table {
 public:
  using Row = std::vector<std::string>;

  /// Without headings, only the rows are printed.
  explicit Table(Row headings_or_none = {}) : headings(std::move(headings_or_none)) {}

  void Add(Row row) { rows.push_back(std::move(row)); }
  bool IsEmpty() const { return rows.empty(); }

  friend std::ostream& operator<<(std::ostream& out, const Table& table);

 private:
  Row headings;
  std::vector<Row> rows;
};

}  // namespace demo
