// Selecting, merging and comparing state documents.
#include "state_document/compare.h"

#include <gmock/gmock.h>

namespace {

using state_document::Differences;
using state_document::Index;
using state_document::Json;
using state_document::Merged;
using state_document::Settable;
using state_document::ToJson;

// {"dante": {"routing": ...}} and so on.
Json Dante(const char* list, const std::string& entries) {
  Json document;
  document["dante"][list] = Json::parse(entries);
  return document;
}

std::string Compared(const Json& from, const Json& to) {
  return ToJson(Differences("", from, to)).dump();
}

TEST(Settable, SimulatedMembersGiven_LeavesThemOut) {
  const Json document = Json::parse(
      R"({"schema": 1, "faults": [], "network": {"ntp_in_effect": ["a"], "ntp": ["b"],
          "switch_modes": [{"id": 1}], "interfaces": [{"mac": "m", "name": "n", "lease": null}]},
          "dante": {"manufacturer": "m", "tx_channels": [{"id": 1, "default_name": "d"}],
          "routing": [{"rx_channel": 1, "raw": {"ip": "i"}}], "ptp": {}}})");

  EXPECT_EQ(Settable(document).dump(),
            R"({"schema":1,"network":{"ntp":["b"],"interfaces":[{"name":"n"}]},)"
            R"("dante":{"tx_channels":[{"id":1}],"routing":[{"rx_channel":1,"raw":{"ip":"i"}}]}})");
}

TEST(Merged, MembersAreMissing_StayAsTheyAre) {
  const Json from = Dante("tx_channels", R"([{"id": 1, "name": "a"}, {"id": 2, "name": "b"}])");
  const Json to = Dante("tx_channels", R"([{"id": 2}, {"id": 1, "name": "c"}, {"id": 3}])");

  EXPECT_EQ(Merged(from, to)["dante"]["tx_channels"].dump(),
            R"([{"id":1,"name":"c"},{"id":2,"name":"b"},{"id":3}])");
  EXPECT_EQ(Merged(from, Json::object()), from);
}

TEST(Merged, ListHasNoKey_IsReplaced) {
  const Json from = Json::parse(R"({"network": {"hostname": "h", "ntp": ["a", "b"]}})");
  const Json to = Json::parse(R"({"network": {"ntp": ["c"]}})");

  EXPECT_EQ(Merged(from, to).dump(), R"({"network":{"hostname":"h","ntp":["c"]}})");
}

TEST(Merged, ObjectBecomesNull_IsReplaced) {
  const Json from = Json::parse(R"({"a": {"b": 1}})");
  const Json to = Json::parse(R"({"a": null})");

  EXPECT_EQ(Merged(from, to), to);
  EXPECT_EQ(Merged(to, from), from);
}

TEST(Merged, SubscriptionLacksMembers_TheyAreEmpty) {
  const Json from =
      Dante("routing", R"([{"rx_channel": 1, "device": "d", "channel": "c", "raw": null}])");
  const Json stream = Dante("routing", R"([{"raw": {"ip": "i", "value3": 7}, "rx_channel": 1}])");

  EXPECT_EQ(Merged(from, Dante("routing", R"([{"rx_channel": 1}])"))["dante"]["routing"].dump(),
            R"([{"rx_channel":1,"device":"","channel":"","raw":null,"flag5":false}])");
  EXPECT_EQ(
      Merged(from, stream)["dante"]["routing"].dump(),
      R"([{"rx_channel":1,"device":"","channel":"","raw":{"ip":"i","value2":0,"value3":7,)"
      R"("value4":0,"value5":0,"value6":0,"encoding":"L24","sip":"","session_id":null},"flag5":false}])");
}

TEST(Differences, EntriesInAnotherOrder_AreEqual) {
  const Json one = Dante("tx_channels", R"([{"id": 1, "name": "a"}, {"id": 2, "name": "b"}])");
  const Json other = Dante("tx_channels", R"([{"name": "b", "id": 2}, {"name": "a", "id": 1}])");

  EXPECT_EQ(Compared(one, other), "[]");
}

TEST(Differences, ValuesDiffer_HavePathAndBothValues) {
  const Json from = Json::parse(
      R"({"network": {"ntp": ["a"], "interfaces": [{"name": "lan0", "ip": "1"}, {"name": "x"}]}})");
  const Json to = Json::parse(
      R"({"network": {"ntp": ["b"], "interfaces": [{"name": "y"}, {"name": "lan0", "ip": "2"}]},
          "dante": 1})");

  EXPECT_EQ(Compared(from, to), R"([{"path":"network.ntp","from":["a"],"to":["b"]},)"
                                R"({"path":"network.interfaces[lan0].ip","from":"1","to":"2"},)"
                                R"({"path":"network.interfaces[x]","from":{"name":"x"},"to":null},)"
                                R"({"path":"network.interfaces[y]","from":null,"to":{"name":"y"}},)"
                                R"({"path":"dante","from":null,"to":1}])");
}

TEST(Differences, ListBecomesNull_IsOneDifference) {
  const Json list = Dante("routing", R"([{"rx_channel": 1}])");
  const Json null = Dante("routing", "null");

  EXPECT_EQ(Compared(list, null),
            R"([{"path":"dante.routing","from":[{"rx_channel":1}],"to":null}])");
  EXPECT_EQ(Compared(null, list),
            R"([{"path":"dante.routing","from":null,"to":[{"rx_channel":1}]}])");
}

TEST(Index, KeyIsThereTwice_FindsTheFirst) {
  const Json list = Json::parse(R"([{"id": 7, "name": "a"}, {"id": 7, "name": "b"}])");
  const Index index(list, "id");

  EXPECT_EQ(index.Find(Json(std::int32_t{7})), &list[0]);
  EXPECT_EQ(index.Find(8), nullptr);
}

}  // namespace
