#include "tools/table.h"

#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace tool {
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

std::string Line(const Table::Row& row, const std::vector<int>& widths) {
  std::string line;
  int pending = 0;  // blanks, written only when something follows
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::string cell = Printable(row[i]);
    if (!cell.empty()) line += std::string(static_cast<std::size_t>(pending), ' ') + cell;
    pending = (cell.empty() ? pending : 0) + widths[i] - Width(cell) + kGap;
  }
  return line;
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

std::string NameText(const Json& name) {
  return name.is_string() ? name.get<std::string>() : name.dump();
}

int Width(const std::string& printable) {
  int width = 0;
  ForEachCharacter(printable, [&](std::wint_t character, const std::string&) {
    width += std::max(WidthOf(character), 0);
  });
  return width;
}

bool HasColour() {
  const char* no_colour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool shows = terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
  return shows && (no_colour == nullptr || *no_colour == '\0') && isatty(STDOUT_FILENO) == 1;
}

std::string Bold(const std::string& text) {
  return HasColour() && !text.empty() ? "\033[1m" + text + "\033[0m" : text;
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

}  // namespace tool
