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

// Calls `use` with the width and the bytes of each character: -1, and one byte,
// where the string is not UTF-8; also -1 where the character is not printable.
template <class Use>
void ForEachCharacter(const std::string& text, Use use) {
  const Utf8 utf8;
  std::mbstate_t state{};
  for (std::size_t at = 0; at < text.size();) {
    wchar_t character = L'\0';
    const std::size_t size = std::mbrtowc(&character, &text[at], text.size() - at, &state);
    // 0 is a NUL, the two largest values are errors.
    if (size == 0 || size > text.size() - at) {
      use(-1, text.substr(at, 1));
      state = {};
      ++at;
    } else {
      use(wcwidth(character), text.substr(at, size));
      at += size;
    }
  }
}

std::string Escaped(const std::string& bytes) {
  if (bytes == "\n") return "\\n";
  if (bytes == "\r") return "\\r";
  if (bytes == "\t") return "\\t";
  std::string escaped;
  for (const char byte : bytes) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "\\x%02x", static_cast<unsigned char>(byte));
    escaped += text.data();
  }
  return escaped;
}

}  // namespace

std::string Printable(const std::string& text) {
  std::string printable;
  ForEachCharacter(text, [&](int width, const std::string& bytes) {
    printable += width < 0 ? Escaped(bytes) : bytes;
  });
  return printable;
}

int Width(const std::string& printable) {
  int sum = 0;
  ForEachCharacter(printable, [&](int width, const std::string&) { sum += std::max(width, 0); });
  return sum;
}

}  // namespace terminal
