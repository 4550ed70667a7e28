#include "terminal/printable.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <cwchar>

namespace terminal {
namespace {

// What follows in this thread reads characters as UTF-8. The locale of the
// process is left alone.
class Utf8 {
 public:
  Utf8() : previous(uselocale(Locale())) {}
  ~Utf8() { uselocale(previous); }

  Utf8(const Utf8&) = delete;
  Utf8& operator=(const Utf8&) = delete;

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

// Characters that have no width of their own but act on what is around them: format
// characters, among them those that turn the direction of writing, and separators.
bool IsInvisible(char32_t code) {
  struct Range {
    char32_t first;
    char32_t last;
  };
  constexpr std::array<Range, 12> kRanges{{{0xAD, 0xAD},
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
  return std::any_of(kRanges.begin(), kRanges.end(),
                     [code](const Range& it) { return it.first <= code && code <= it.last; });
}

template <class Use>
void ForEachCharacter(const std::string& text, Use use) {
  const Utf8 utf8;
  std::mbstate_t state{};
  for (std::size_t at = 0; at < text.size();) {
    wchar_t wide = L'\0';
    const std::size_t size = std::mbrtowc(&wide, &text[at], text.size() - at, &state);
    // 0 is a NUL, the two largest values are errors.
    const bool valid = size != 0 && size <= text.size() - at;
    Character character{0, text.substr(at, valid ? size : 1), -1};
    if (valid) {
      character.code = static_cast<char32_t>(wide);
      character.width = IsInvisible(character.code) ? -1 : wcwidth(wide);
    } else {
      state = {};
    }
    use(character);
    at += character.bytes.size();
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
