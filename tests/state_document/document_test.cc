// Reading a state document: what is wrong is reported with its line, within
// limits of size, depth and time.
#include "state_document/document.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <fstream>

#include "state_document/compare.h"
#include "state_document/parse.h"
#include "terminal/printable.h"

namespace {

using state_document::BadDocument;
using state_document::Document;
using state_document::Json;
using state_document::ReadFile;
using state_document::ToText;
using testing::Gt;

// Why the text is rejected, "" if it is not.
std::string Rejection(const std::string& text) {
  try {
    const Document document(text, "file.json");
  } catch (const BadDocument& bad) {
    return bad.what();
  }
  return "";
}

// The same for a file that cannot be read.
std::string Unreadable(const std::string& file) {
  try {
    ReadFile(file);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

TEST(Document, IsWrong_IsRejectedWithFileLineAndReason) {
  std::ifstream table(NETWORKGRPC_BAD_DOCUMENTS);
  int rows = 0;
  for (std::string row; std::getline(table, row);) {
    if (row.empty() || row[0] == '#') continue;
    std::string text = row.substr(0, row.rfind('|'));
    for (std::size_t at = 0; (at = text.find("\\n")) != std::string::npos;)
      text.replace(at, 2, "\n");
    EXPECT_EQ(terminal::Printable(Rejection(text)), "file.json:" + row.substr(row.rfind('|') + 1))
        << text;
    ++rows;
  }
  EXPECT_THAT(rows, Gt(50));
}

TEST(Document, HasComments_IsReadWithoutThem) {
  EXPECT_EQ(Document("// form\n{/* of */\"schema\": 1} // a document", "").Root().dump(),
            R"({"schema":1})");
}

TEST(Document, StreamIsRouted_MayNameItsDeviceOnly) {
  EXPECT_EQ(Rejection(R"({"schema": 1, "dante": {"routing": [
      {"rx_channel": 1, "device": "a", "raw": {"ip": "239.1.2.3"}}]}})"),
            "");
}

TEST(Document, NumberHasAName_BecomesTheNameAndOthersStay) {
  const Document document(R"({"schema": 1, "network": {"interfaces": [
      {"name": "a", "mode": 0}, {"name": "b", "mode": 3}, {"name": "c", "mode": 4}]}})",
                          "");

  const Json& interfaces = document.Root()["network"]["interfaces"];
  EXPECT_EQ(interfaces[0]["mode"], "dynamic");
  EXPECT_EQ(interfaces[1]["mode"], "link-local-only");
  EXPECT_EQ(interfaces[2]["mode"], 4);
}

TEST(Document, EntryIsRejectedLater_NamesItsLine) {
  const Document document(
      "{\"schema\": 1, \"faults\": [{\"method\": \"a\"},\n{\"method\": \"b\"}]}", "file.json");
  try {
    document.Reject("faults", 1, "is not wanted");
  } catch (const BadDocument& bad) {
    EXPECT_STREQ(bad.what(), "file.json:2: faults[1]: is not wanted");
  }
}

TEST(Document, IsTooDeep_IsRejectedWhereItLeavesTheTable) {
  const std::string brackets(300000, '[');
  EXPECT_EQ(Rejection(brackets), "file.json:1: the document: must be an object");
  EXPECT_EQ(Rejection("{\"schema\": 1, \"network\": {\"ntp\": [" + brackets),
            "file.json:1: network.ntp[0]: must be a string");
}

TEST(Document, IsTooLarge_IsRejected) {
  const std::string smallest = "{\"schema\": 1}";
  const std::string blanks(state_document::kMostBytes - smallest.size(), ' ');
  EXPECT_EQ(Rejection(smallest + blanks), "");
  EXPECT_EQ(Rejection(smallest + blanks + ' '),
            "file.json:1: the document: must not be larger than 16 MiB");
}

TEST(Document, TextHasNoEnd_IsRejected) {
  std::ifstream zeros("/dev/zero");
  try {
    state_document::Read(zeros, "-");
    FAIL();
  } catch (const BadDocument& bad) {
    EXPECT_STREQ(bad.what(), "-:1: the document: must not be larger than 16 MiB");
  }
}

TEST(Document, FileIsADevice_IsRejectedByName) {
  for (const std::string device : {"/dev/zero", "/dev/null", "/dev/tty"})
    EXPECT_EQ(Unreadable(device), "cannot read " + device + ": not a regular file or a pipe");
}

TEST(Document, FileIsAPipe_IsRead) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
  ASSERT_EQ(write(pipe[1], "{\"schema\": 1}", 13), 13);
  close(pipe[1]);
  EXPECT_EQ(ReadFile("/dev/fd/" + std::to_string(pipe[0])).Root().dump(), R"({"schema":1})");
  close(pipe[0]);
}

TEST(Document, FileCannotBeRead_IsReportedWithTheReason) {
  EXPECT_EQ(Unreadable("none"), "cannot read none: No such file or directory");
  EXPECT_EQ(Unreadable("/"), "cannot read /: Is a directory");
}

TEST(Document, Written_HasOneMemberALineAndALineFeedAtTheEnd) {
  EXPECT_EQ(ToText({{"b", {1}}, {"a", "\xff"}}),
            "{\n  \"b\": [\n    1\n  ],\n  \"a\": \"\xef\xbf\xbd\"\n}\n");
}

// Seconds of processor time to read and to compare a document of so many entries.
double TimeFor(int entries) {
  Json document = {{"schema", 1}};
  Json& interfaces = document["network"]["interfaces"] = Json::array();
  for (int i = 0; i < entries; ++i)
    interfaces.push_back(
        {{"name", "interface " + std::to_string(i)}, {"id", i}, {"mode", "static"}});
  const std::string text = ToText(document);
  document["network"]["interfaces"].back()["mode"] = "dynamic";
  const std::clock_t start = std::clock();
  const Json read = state_document::Settable(Document(text, "").Root());
  const Json merged = state_document::Merged(read, state_document::Settable(document));
  EXPECT_EQ(state_document::Differences("", read, merged).size(), 1U);
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(Document, HasManyEntries_TimeGrowsWithTheirNumber) {
  constexpr double kMost = 30;  // 10 and a little; 100 if it grew with their square
  EXPECT_LT(TimeFor(20000) / TimeFor(2000), kMost);
}

std::string Nested(std::size_t levels) {
  return std::string(levels, '[') + std::string(levels, ']');
}

// Deeper, ToText would use up the stack.
TEST(ParseJson, IsNestedDeeply_IsRejected) {
  EXPECT_EQ(state_document::ParseJson("{} // any").dump(), "{}");
  EXPECT_EQ(state_document::ParseJson(Nested(100)).dump(), Nested(100));
  EXPECT_THROW(state_document::ParseJson(Nested(1000000)), std::runtime_error);
  EXPECT_THROW(state_document::ParseJson("{"), std::runtime_error);
}

}  // namespace
