#include "tools/csv.h"

#include <algorithm>
#include <stdexcept>

namespace tool {
namespace {

class Parser {
 public:
  Parser(const std::string& table, const std::string& called) : text(table), name(called) {
    constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";
    if (text.compare(0, 3, kByteOrderMark) == 0) at = line_start = 3;
    const std::string first = text.substr(at, text.find_first_of("\r\n", at) - at);
    if (first.find(';') != std::string::npos) separator = ';';
    if (first != "sep=;" && first != "sep=,") return;
    separator = first.back();
    at += first.size();
    EndLine();
  }

  std::vector<CsvRow> Rows() {
    std::vector<CsvRow> rows;
    while (at < text.size()) {
      CsvRow row = Row();
      if (row.fields.size() == 1 && row.fields.front().empty()) continue;
      const std::size_t wanted = rows.empty() ? row.fields.size() : rows.front().fields.size();
      if (row.fields.size() != wanted)
        throw std::runtime_error(name + ":" + std::to_string(row.line) + ": has " +
                                 std::to_string(row.fields.size()) +
                                 " fields; the header line has " + std::to_string(wanted));
      rows.push_back(std::move(row));
    }
    return rows;
  }

 private:
  CsvRow Row() {
    CsvRow row{line, {Field()}};
    while (at < text.size() && text[at] == separator) {
      ++at;
      row.fields.push_back(Field());
    }
    if (at < text.size() && !EndLine()) Reject(at, "text follows the closing quote of a field");
    return row;
  }

  std::string Field() {
    if (at < text.size() && text[at] == '"') return Quoted();
    const std::size_t end =
        std::min(text.find_first_of(std::string("\r\n\"") + separator, at), text.size());
    if (end < text.size() && text[end] == '"') Reject(end, "a quote inside a field without quotes");
    std::string field = text.substr(at, end - at);
    at = end;
    return field;
  }

  std::string Quoted() {
    const std::size_t opening = at++;
    const std::size_t opening_line = line;
    const std::size_t opening_line_start = line_start;
    std::string field;
    for (; at < text.size(); ++at) {
      if (text[at] == '"' && text.compare(at + 1, 1, "\"") != 0) {
        ++at;
        return field;
      }
      if (text[at] == '"') ++at;
      field += text[at];
      if (text[at] == '\n') {
        ++line;
        line_start = at + 1;
      }
    }
    line = opening_line;
    line_start = opening_line_start;
    Reject(opening, "a quote that is not closed");
  }

  // False if no line ends here.
  bool EndLine() {
    if (text.compare(at, 2, "\r\n") == 0)
      at += 2;
    else if (at < text.size() && text[at] == '\n')
      ++at;
    else if (at < text.size() && text[at] == '\r')
      Reject(at, "a carriage return without a line feed");
    else
      return false;
    ++line;
    line_start = at;
    return true;
  }

  [[noreturn]] void Reject(std::size_t where, const std::string& reason) const {
    throw std::runtime_error(name + ":" + std::to_string(line) + ":" +
                             std::to_string(where - line_start + 1) + ": " + reason);
  }

  const std::string& text;
  const std::string& name;
  char separator = ',';
  std::size_t at = 0;
  std::size_t line = 1;
  std::size_t line_start = 0;
};

}  // namespace

std::vector<CsvRow> ParseCsv(const std::string& text, const std::string& name) {
  return Parser(text, name).Rows();
}

std::string CsvLine(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) {
    std::string quoted = "\"";
    for (const char character : field)
      quoted += character == '"' ? std::string("\"\"") : std::string(1, character);
    const bool is_plain = field.find_first_of("\",;\r\n") == std::string::npos;
    line += (&field == &fields.front() ? "" : ",") + (is_plain ? field : quoted + "\"");
  }
  return line + "\r\n";
}

}  // namespace tool
