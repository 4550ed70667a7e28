// The simulator's model has every member of the table, with its type and range.
#include <gmock/gmock.h>

#include <algorithm>

#include "simulator/factory_defaults.h"
#include "simulator/state.h"
#include "state_document/table.h"

namespace {

using simulator::ReadState;
using simulator::State;
using simulator::WriteState;
using state_document::Json;
using state_document::Kind;
using state_document::Member;

// A device that leaves no list empty and nothing null.
State Full() {
  State state{simulator::FactoryDefaults(1, 1), {simulator::ParseFault("GetName:drop,delay=1")}};
  simulator::Interface interface = state.device.network.interfaces[1];
  interface.stored.addresses.dns = interface.lease->dns = interface.link_local.dns =
      interface.live.dns = {"10.0.0.1"};
  state.device.network.interfaces = {interface};
  state.device.dante.links[1].raw = simulator::RawStream{"239.0.0.1", {}, 0, "", 7};
  return state;
}

Json FullDocument() { return Json::parse(WriteState(Full())); }

// Appends the paths of all values that are no containers, as the table has them.
void AppendPaths(const Json& value, const std::string& path, std::vector<std::string>& paths) {
  if (!value.is_structured()) {
    if (std::count(paths.begin(), paths.end(), path) == 0) paths.push_back(path);
    return;
  }
  for (const auto& [name, member] : value.items())
    AppendPaths(member, value.is_array() ? path + "[]" : state_document::MemberPath(path, name),
                paths);
}

// The value at a path of the table, in the first entry of each list.
Json& At(Json& document, const std::string& path) {
  std::string pointer = '/' + path;
  for (std::size_t at = 0; (at = pointer.find("[]")) != std::string::npos;)
    pointer.replace(at, 2, "/0");
  std::replace(pointer.begin(), pointer.end(), '.', '/');
  return document.at(Json::json_pointer(pointer));
}

TEST(Model, EveryMemberOfTheTable_IsWrittenInItsOrder) {
  std::vector<std::string> in_table;
  for (const Member& member : state_document::Table())
    if (member.type.kind != Kind::kObject) in_table.emplace_back(member.path);
  std::vector<std::string> written;
  AppendPaths(FullDocument(), "", written);

  EXPECT_EQ(written, in_table);
}

// But for those whose value another member has to have too.
bool IsNumber(const Member& member) {
  return (member.type.kind == Kind::kInteger || member.type.kind == Kind::kNameOrNumber) &&
         (member.use & state_document::kUnique) == 0;
}

TEST(Model, NumberIsAtEitherEndOfItsRange_IsReadAndWrittenBack) {
  for (const Member& member : state_document::Table()) {
    if (!IsNumber(member)) continue;
    for (const Json& value : {Json(member.type.least), Json(member.type.most)}) {
      Json document = FullDocument();
      At(document, member.path) = value;

      Json written = Json::parse(WriteState(ReadState(document.dump(), "", Full())));

      EXPECT_EQ(At(written, member.path), value) << member.path;
    }
  }
}

}  // namespace
