// Strings from outside, as they are shown.
//
// Input: the string.
#include "state_document/json.h"
#include "terminal/printable.h"
#include "terminal/table.h"
#include "tests/fuzz/fuzz.h"

using fuzz::Check;
using state_document::Json;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string printable = terminal::Printable(text);
  fuzz::CheckPrintable(printable);
  Check(printable.find('\n') == std::string::npos, "it is one line");
  Check(terminal::Printable(printable) == printable, "what is printable stays");
  Check(terminal::Width(printable) >= 0, "it has a width");

  terminal::Table table({"A", "B"});
  table.Add({text, "x"}).Add({"x", text});
  const std::string shown = table.Text();
  fuzz::CheckPrintable(shown);
  int lines = 0;
  for (const char it : shown) lines += it == '\n' ? 1 : 0;
  Check(lines == 3, "each row is one line");

  const std::string json = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
  const std::string escaped = terminal::EscapedInJson(json);
  fuzz::CheckPrintable(escaped);
  Check(Json::parse(escaped) == Json::parse(json), "an escaped string is the same");
  return 0;
}
