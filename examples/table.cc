#include "examples/table.h"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <utility>

namespace demo {
namespace {

constexpr int kGap = 2;  // columns of blanks

// Gives `use` each character of a UTF-8 text with its bytes; WEOF, with one
// byte, where the text is broken.
template <class Use>
void ForEachCharacter(const std::string& text, Use use) {
  std::mbstate_t state{};
  for (std::size_t at = 0; at < text.size();) {
    wchar_t character = L'\0';
    const std::size_t size = std::mbrtowc(&character, &text[at], text.size() - at, &state);
    // 0 is a NUL, the two largest values are errors.
    if (size == 0 || size > text.size() - at) {
      use(static_cast<std::wint_t>(WEOF), text.substr(at, 1));
      state = {};
      ++at;
    } else {
      use(static_cast<std::wint_t>(character), text.substr(at, size));
      at += size;
    }
  }
}

int WidthOf(std::wint_t character) { return wcwidth(static_cast<wchar_t>(character)); }

void Measure(const Table::Row& row, std::vector<int>& widths) {
  widths.resize(std::max(widths.size(), row.size()));
  for (std::size_t i = 0; i < row.size(); ++i)
    widths[i] = std::max(widths[i], Width(Printable(row[i])));
}

void Print(std::ostream& out, const Table::Row& row, const std::vector<int>& widths) {
  std::string line;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::string cell = Printable(row[i]);
    const int padding = i + 1 < row.size() ? widths[i] - Width(cell) : 0;
    line += std::string(kGap, ' ') + cell + std::string(static_cast<std::size_t>(padding), ' ');
  }
  out << line << '\n';
}

}  // namespace

void UseUtf8() { std::setlocale(LC_CTYPE, "C.UTF-8"); }

std::string Printable(const std::string& text) {
  std::string printable;
  ForEachCharacter(text, [&](std::wint_t character, const std::string& bytes) {
    printable += character == WEOF || WidthOf(character) < 0 ? "?" : bytes;
  });
  return printable;
}

int Width(const std::string& printable) {
  int width = 0;
  ForEachCharacter(printable, [&](std::wint_t character, const std::string&) {
    width += std::max(WidthOf(character), 0);
  });
  return width;
}

std::ostream& operator<<(std::ostream& out, const Table& table) {
  std::vector<int> widths;
  Measure(table.headings, widths);
  for (const Table::Row& row : table.rows) Measure(row, widths);
  if (!table.headings.empty()) Print(out, table.headings, widths);
  for (const Table::Row& row : table.rows) Print(out, row, widths);
  return out;
}

}  // namespace demo
