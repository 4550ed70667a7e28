#include "tools/patch_list.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <optional>
#include <utility>

#include "state_document/compare.h"
#include "state_document/document.h"
#include "terminal/joined.h"
#include "tools/csv.h"
#include "tools/failure.h"

namespace tool {
namespace {

using state_document::Document;
using Columns = std::vector<std::string>;

const Columns kSubscription{"rx_channel", "device", "channel"};
const Columns kStream{"ip",     "value2",   "value3", "value4",    "value5",
                      "value6", "encoding", "sip",    "session_id"};
constexpr const char* kFlag = "flag5";

Columns AllOfRouting() {
  Columns columns = kSubscription;
  columns.insert(columns.end(), kStream.begin(), kStream.end());
  columns.emplace_back(kFlag);
  return columns;
}

// A table whose columns are found by their names.
class Table {
 public:
  Table(std::string file, const Columns& required, const Columns& known)
      : name(std::move(file)), rows(ParseCsv(ReadText(), name)) {
    if (rows.empty()) throw std::runtime_error(name + ": the header line is missing");
    header = std::move(rows.front());
    rows.erase(rows.begin());
    for (const std::string& it : header.fields) {
      if (std::count(known.begin(), known.end(), it) == 0)
        Reject(header, "unknown column '" + it + "'; there can be " + terminal::Joined(known));
      if (std::count(header.fields.begin(), header.fields.end(), it) > 1)
        Reject(header, "duplicate column '" + it + "'");
    }
    for (const std::string& it : required)
      if (std::count(header.fields.begin(), header.fields.end(), it) == 0)
        Reject(header, "the column '" + it + "' is missing");
  }

  [[noreturn]] void Reject(const CsvRow& row, const std::string& reason) const {
    throw std::runtime_error(name + ":" + std::to_string(row.line) + ": " + reason);
  }

  /// Empty if there is no such column.
  std::string Field(const CsvRow& row, const std::string& column) const {
    const auto found = std::find(header.fields.begin(), header.fields.end(), column);
    if (found == header.fields.end()) return "";
    return row.fields[static_cast<std::size_t>(found - header.fields.begin())];
  }

  /// Throws a Failure for a row of a channel that the device does not have.
  void CheckPresent(const CsvRow& row, const std::string& id_column, const Json& channels) const {
    const std::string id = Field(row, id_column);
    if (std::any_of(channels.begin(), channels.end(),
                    [&](const Json& it) { return it["id"].dump() == id; }))
      return;
    throw Failure(ExitStatus::kNotFound,
                  name + ":" + std::to_string(row.line) + ": the device has no channel " + id +
                      "; see 'networkgrpc channel list'",
                  Daemon::kDante);
  }

  const std::vector<CsvRow>& Rows() const { return rows; }

  /// Rows become entries of `list` of a state document, or null for none. Each stands on
  /// the line of its row, so that messages about the document name lines of the table.
  Document ToDocument(const std::string& list,
                      const std::function<Json(const CsvRow&)>& entry) const {
    std::string text = R"({"schema":1,"dante":{")" + list + "\":[";
    std::size_t line = 1;
    bool is_first = true;
    for (const CsvRow& row : rows) {
      const Json value = entry(row);
      if (value.is_null()) continue;
      if (!is_first) text += ",";
      is_first = false;
      text.append(row.line - line, '\n');
      line = row.line;
      try {
        text += value.dump();
      } catch (const Json::type_error&) {
        Reject(row, "not valid UTF-8");
      }
    }
    return {text + "]}}", name};
  }

 private:
  std::string ReadText() const {
    return name == "-" ? state_document::ReadText(std::cin, name)
                       : state_document::ReadTextFile(name);
  }

  const std::string name;
  std::vector<CsvRow> rows;
  CsvRow header{};
};

// What is no number stays a string: whether there must be a number is known where the
// document is checked.
Json NumberOrString(const std::string& field) {
  const bool is_decimal = !field.empty() && field.size() <= 20 &&
                          field.find_first_not_of("0123456789") == std::string::npos &&
                          (field == "0" || field.front() != '0');
  return is_decimal ? Json::parse(field) : Json(field);
}

// As spreadsheets write it, in any language.
Json TruthOrString(const std::string& field) {
  if (field.empty() || field == "0" || field == "false" || field == "FALSE") return false;
  if (field == "1" || field == "true" || field == "TRUE") return true;
  return field;
}

Json ToEntry(const Table& table, const CsvRow& row) {
  Json raw = Json::object();
  for (const std::string& column : kStream) {
    const std::string field = table.Field(row, column);
    const bool is_string = column == "ip" || column == "sip";
    if (!field.empty()) raw[column] = is_string ? Json(field) : NumberOrString(field);
  }
  if (!raw.empty() && !raw.contains("ip")) table.Reject(row, "a stream needs an ip");
  return {{"rx_channel", NumberOrString(table.Field(row, "rx_channel"))},
          {"device", table.Field(row, "device")},
          {"channel", table.Field(row, "channel")},
          {"raw", raw.empty() ? Json() : raw},
          {kFlag, TruthOrString(table.Field(row, kFlag))}};
}

// What is wrong with the document of a file, without the paths of entries: a table has none.
template <class Function>
Json FromFile(const std::string& file, const Function& read) {
  try {
    return read();
  } catch (const std::runtime_error& error) {
    std::string message = error.what();
    const std::size_t path = message.find("dante.", file.size());
    const std::size_t end = message.find(']', path);
    // "dante.routing[0].ip: ..." or "dante.routing[0]: ..."
    if (end != std::string::npos)
      message.erase(path, message.find_first_not_of(".: ", end + 1) - path);
    throw Failure(ExitStatus::kFailed, message);
  }
}

}  // namespace

std::string RoutingToCsv(const Json& routing) {
  const auto text = [](const Json& value) {
    if (value.is_null()) return std::string();
    return value.is_string() ? value.get<std::string>() : value.dump();
  };
  std::string table = CsvLine(AllOfRouting());
  for (const Json& entry : routing) {
    std::vector<std::string> fields;
    for (const std::string& column : kSubscription) fields.push_back(text(entry[column]));
    for (const std::string& column : kStream)
      fields.push_back(entry["raw"].is_null() ? "" : text(entry["raw"][column]));
    fields.emplace_back(entry[kFlag].get<bool>() ? "1" : "0");
    table += CsvLine(fields);
  }
  return table;
}

Json RoutingFromCsv(const std::string& file, const Json& receivers) {
  return FromFile(file, [&]() -> Json {
    const Table table(file, kSubscription, AllOfRouting());
    const Document document =
        table.ToDocument("routing", [&](const CsvRow& row) { return ToEntry(table, row); });
    for (const CsvRow& row : table.Rows()) table.CheckPresent(row, "rx_channel", receivers);
    return {{"dante", state_document::Settable(document.Root())["dante"]}};
  });
}

Json ChannelNamesFromCsv(const std::string& file, const Json& present) {
  return FromFile(file, [&]() -> Json {
    const Columns columns{"direction", "id", "name"};
    const Table table(file, columns, columns);
    Json merged = {{"dante", Json::object()}};
    for (const std::string direction : {"transmit", "receive"}) {
      const std::string list = direction == "transmit" ? "tx_channels" : "rx_channels";
      const Document document = table.ToDocument(list, [&](const CsvRow& row) -> Json {
        const std::string typed = table.Field(row, "direction");
        if (typed != "transmit" && typed != "receive")
          table.Reject(row, "direction: '" + typed + "' must be transmit or receive");
        if (typed != direction) return nullptr;
        if (table.Field(row, "name").empty()) table.Reject(row, "name must not be empty");
        return {{"id", NumberOrString(table.Field(row, "id"))}, {"name", table.Field(row, "name")}};
      });
      for (const CsvRow& row : table.Rows())
        if (table.Field(row, "direction") == direction)
          table.CheckPresent(row, "id", present[list]);
      merged["dante"][list] = state_document::Settable(document.Root())["dante"][list];
    }
    return merged;
  });
}

}  // namespace tool
