// Tables as comma-separated values: RFC 4180, and what spreadsheets make of it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tool {

struct CsvRow {
  std::size_t line;  // on which it begins, from 1
  std::vector<std::string> fields;
};

/// The rows of a table, the header line first; empty lines are left out. A byte-order
/// mark is skipped, lines end with LF or CRLF, fields are separated by semicolons if the
/// header line has one, or if a line "sep=;" precedes it. Every row has as many fields
/// as the first. Throws std::runtime_error, "NAME:LINE:COLUMN: reason".
std::vector<CsvRow> ParseCsv(const std::string& text, const std::string& name);

/// One row, ended by CRLF.
std::string CsvLine(const std::vector<std::string>& fields);

}  // namespace tool
