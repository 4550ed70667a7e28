// Tables as comma-separated values, and what the tool makes of them.
//
// Input: the text of a table.
#include <stdexcept>

#include "tests/fuzz/fuzz.h"
#include "tools/csv.h"
#include "tools/failure.h"
#include "tools/patch_list.h"

namespace {

using fuzz::Check;

void CheckRows(const std::string& text) {
  const std::vector<tool::CsvRow> rows = tool::ParseCsv(text, "f");
  std::string written = "sep=,\r\n";
  for (const tool::CsvRow& row : rows) written += tool::CsvLine(row.fields);
  const std::vector<tool::CsvRow> again = tool::ParseCsv(written, "f");
  Check(again.size() == rows.size(), "every row is written");
  for (std::size_t i = 0; i < rows.size(); ++i)
    Check(again[i].fields == rows[i].fields, "a row is read as it was written");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    CheckRows(text);
  } catch (const std::runtime_error& error) {
    Check(std::string(error.what()).compare(0, 2, "f:") == 0, "an error names file and line");
  }
  const fuzz::File file(text);
  const tool::Json channels = {{{"id", 1}, {"name", "a"}}, {{"id", 2}, {"name", "b"}}};
  try {
    const tool::Json document = tool::RoutingFromCsv(file.Path(), channels);
    tool::RoutingToCsv(document["dante"]["routing"]);
  } catch (const tool::Failure&) {
  }
  try {
    tool::ChannelNamesFromCsv(file.Path(), {{"rx_channels", channels}, {"tx_channels", channels}});
  } catch (const tool::Failure&) {
  }
  return 0;
}
