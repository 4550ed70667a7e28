#include "terminal/printable.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <cwchar>
#include <string_view>

namespace terminal {
namespace {

// The table of characters of the C library, for this thread. The locale of the process is
// left alone. A system can be without the table: a device with a small system, or an empty
// root in which a static program runs.
class Utf8 {
 public:
  Utf8() : previous(uselocale(Locale())) {}
  ~Utf8() { uselocale(previous); }

  Utf8(const Utf8&) = delete;
  Utf8& operator=(const Utf8&) = delete;

  static bool Exists() { return Locale() != nullptr; }

 private:
  static locale_t Locale() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
  }

  locale_t previous;
};

struct Character {
  char32_t code = 0;  // 0 for a byte that is not UTF-8
  std::string bytes;
  int width = -1;  // -1 if it is not printable
};

struct Range {
  char32_t first;
  char32_t last;
};

template <std::size_t kSize>
bool IsIn(const std::array<Range, kSize>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [code](const Range& it) { return it.first <= code && code <= it.last; });
}

// Characters that have no width of their own but act on what is around them: format
// characters, among them those that turn the direction of writing, and separators.
constexpr std::array<Range, 12> kInvisible{{{0xAD, 0xAD},
                                            {0x61C, 0x61C},
                                            {0x180E, 0x180E},
                                            {0x200B, 0x200F},
                                            {0x2028, 0x202E},
                                            {0x2060, 0x206F},
                                            {0xFEFF, 0xFEFF},
                                            {0xFFF9, 0xFFFB},
                                            {0x110BD, 0x110BD},
                                            {0x13430, 0x1343F},
                                            {0x1D173, 0x1D17A},
                                            {0xE0000, 0xE0FFF}}};

// Approximations, without the C library's table: accents that combine with the character
// before them, and characters of the width of two, of East Asia and pictures.
constexpr std::array<Range, 4> kCombining{
    {{0x300, 0x36F}, {0x1AB0, 0x1AFF}, {0x20D0, 0x20FF}, {0xFE00, 0xFE2F}}};
constexpr std::array<Range, 9> kWide{{{0x1100, 0x115F},
                                      {0x2E80, 0xA4CF},
                                      {0xA960, 0xA97F},
                                      {0xAC00, 0xD7A3},
                                      {0xF900, 0xFAFF},
                                      {0xFE30, 0xFE6F},
                                      {0xFF00, 0xFF60},
                                      {0x1F300, 0x1F9FF},
                                      {0x20000, 0x3FFFD}}};

int WidthOf(char32_t code) {
  const bool is_control = code < ' ' || (code >= 0x7F && code < 0xA0);
  if (is_control || IsIn(kInvisible, code)) return -1;
  if (Utf8::Exists()) return wcwidth(static_cast<wchar_t>(code));
  if (IsIn(kCombining, code)) return 0;
  return IsIn(kWide, code) ? 2 : 1;
}

// The first character of a string that is not empty.
Character First(std::string_view text) {
  constexpr std::array<char32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
  const Character invalid{0, std::string(text.substr(0, 1)), -1};
  const auto first = static_cast<unsigned char>(text.front());
  std::size_t size = 1;
  if (first >= 0xF0)
    size = 4;
  else if (first >= 0xE0)
    size = 3;
  else if (first >= 0x80)
    size = 2;
  if ((first >= 0x80 && first < 0xC0) || first > 0xF4 || size > text.size()) return invalid;
  char32_t code = size == 1 ? first : first & (0x7FU >> size);
  for (std::size_t at = 1; at < size; ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if ((byte & 0xC0U) != 0x80) return invalid;
    code = code << 6U | (byte & 0x3FU);
  }
  const bool is_surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kLeast[size] || is_surrogate || code > 0x10FFFF) return invalid;
  return {code, std::string(text.substr(0, size)), WidthOf(code)};
}

template <class Use>
void ForEachCharacter(std::string_view text, Use use) {
  const Utf8 utf8;
  while (!text.empty()) {
    const Character character = First(text);
    use(character);
    text.remove_prefix(character.bytes.size());
  }
}

std::string Formatted(const char* format, unsigned number) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

std::string Escaped(const Character& character) {
  const auto first = static_cast<unsigned char>(character.bytes.front());
  if (first == '\n') return "\\n";
  if (first == '\r') return "\\r";
  if (first == '\t') return "\\t";
  if (character.bytes.size() == 1) return Formatted("\\x%02x", first);
  return Formatted(character.code > 0xFFFF ? "\\U%08x" : "\\u%04x", character.code);
}

// In JSON, a character beyond the first plane is a pair of surrogates.
std::string JsonEscaped(char32_t code) {
  if (code <= 0xFFFF) return Formatted("\\u%04x", code);
  const char32_t rest = code - 0x10000;
  return Formatted("\\u%04x", 0xD800 + (rest >> 10U)) +
         Formatted("\\u%04x", 0xDC00 + (rest & 0x3FFU));
}

}  // namespace

std::string Printable(const std::string& text) {
  std::string printable;
  ForEachCharacter(
      text, [&](const Character& it) { printable += it.width < 0 ? Escaped(it) : it.bytes; });
  return printable;
}

std::string EscapedInJson(const std::string& json) {
  std::string escaped;
  ForEachCharacter(json, [&](const Character& it) {
    escaped += it.width < 0 && it.code >= ' ' ? JsonEscaped(it.code) : it.bytes;
  });
  return escaped;
}

int Width(const std::string& printable) {
  int sum = 0;
  ForEachCharacter(printable, [&](const Character& it) { sum += std::max(it.width, 0); });
  return sum;
}

}  // namespace terminal
