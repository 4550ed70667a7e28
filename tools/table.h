// Text for people: columns that line up whatever the script, and colour where
// it can be seen.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tools/json.h"

namespace tool {

/// Makes the functions below read texts as UTF-8; for the start of main.
void UseUtf8();

/// The text as a terminal can show it in one line: control characters, which
/// could move its cursor, and broken UTF-8 become "?".
std::string Printable(const std::string& text);

/// A name, or the number that stands for one that has none.
std::string NameText(const Json& name);

/// How many columns a printable text takes: none for a combining accent, two
/// for a wide ideograph.
int Width(const std::string& printable);

/// True when standard output is a terminal that shows colour and NO_COLOR is
/// unset.
bool HasColour();

/// The text in bold where HasColour, else as it is.
std::string Bold(const std::string& text);

class Table {
 public:
  using Row = std::vector<std::string>;

  /// Without headings, only the rows are printed.
  explicit Table(Row headings_or_none = {}) : headings(std::move(headings_or_none)) {}

  Table& Add(Row row) {
    rows.push_back(std::move(row));
    return *this;
  }

  /// One line per row, cells two columns apart; no blanks at the end of a line.
  std::string Text() const;

 private:
  Row headings;
  std::vector<Row> rows;
};

}  // namespace tool
