// tools/schema/state.schema.json is made from the table. It is written anew when
// NETWORKGRPC_REGENERATE is set.
#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "state_document/table.h"

namespace {

using state_document::Json;
using state_document::Kind;
using state_document::Node;
using state_document::Type;

Json WithType(const Type& type, const char* name) {
  return {{"type", type.or_null ? Json({name, "null"}) : Json(name)}};
}

Json Range(const Type& type) {
  Json schema = WithType(type, "integer");
  schema["minimum"] = type.least;
  schema["maximum"] = type.most;
  return schema;
}

// The ranges that have a name, for this schema and that of the tool's output.
Json Definitions() {
  Json definitions = Json::object();
  for (const auto& member : state_document::Table()) {
    if (member.type.kind != Kind::kInteger || member.type.or_null) continue;
    if (Json range = Range(member.type); range["maximum"] == 2147483647)
      definitions["int32"] = range;
    else if (range["maximum"] == 4294967295)
      definitions["uint32"] = range;
  }
  return definitions;
}

Json Integer(const Type& type) {
  if (static_cast<std::uint64_t>(type.least) == type.most) return {{"const", type.least}};
  Json range = Range(type);
  range["type"] = "integer";
  const Json definitions = Definitions();
  for (const auto& [name, definition] : definitions.items())
    if (definition == range) return {{"$ref", "#/$defs/" + name}};
  return Range(type);
}

Json NamesOf(const Type& type) {
  Json names = Json::array();
  for (const char* name : *type.names) names.push_back(name);
  return {{"enum", names}};
}

Json Leaf(const Type& type) {
  switch (type.kind) {
    case Kind::kBoolean:
      return WithType(type, "boolean");
    case Kind::kInteger:
      return Integer(type);
    case Kind::kName:
      return NamesOf(type);
    case Kind::kNameOrNumber:
      return {{"oneOf", {NamesOf(type), Integer(type)}}};
    default:
      return WithType(type, "string");
  }
}

Json SchemaOf(const Node& node, bool parent_is_settable);

Json Object(const Node& node) {
  Json schema = WithType(node.type, "object");
  schema["additionalProperties"] = false;
  Json properties = Json::object();
  for (const Node& member : node.children) {
    const bool is_settable = (node.use & state_document::kSettable) != 0;
    properties[member.name] = SchemaOf(member, is_settable);
    if ((member.use & state_document::kRequired) != 0) schema["required"].push_back(member.name);
  }
  schema["properties"] = properties;
  return schema;
}

Json List(const Node& node) {
  Json schema = WithType(node.type, "array");
  const bool is_settable = (node.use & state_document::kSettable) != 0;
  schema["items"] = SchemaOf(node.children.front(), is_settable);
  return schema;
}

Json SchemaOf(const Node& node, bool parent_is_settable) {
  std::string description = node.note;
  if (parent_is_settable && (node.use & state_document::kSettable) == 0)
    description += (description.empty() ? "" : ". ") + std::string("Simulated device only");
  Json schema = Json::object();
  if (!description.empty()) schema["description"] = description;
  schema.update(node.type.kind == Kind::kObject ? Object(node)
                : node.type.kind == Kind::kList ? List(node)
                                                : Leaf(node.type));
  return schema;
}

// On one line, with blanks.
std::string Line(const Json& value) {
  if (!value.is_structured()) return value.dump();
  std::string line;
  for (const auto& [name, member] : value.items())
    line += (line.empty() ? "" : ", ") + (value.is_object() ? Json(name).dump() + ": " : "") +
            Line(member);
  return value.is_object() ? '{' + line + '}' : '[' + line + ']';
}

// An object that is too long for a line has a line for each member, but for short
// members that are no objects.
std::string Text(const Json& value, const std::string& indent = "") {
  constexpr std::size_t kWidth = 140;
  constexpr std::size_t kShort = 40;
  const std::string line = Line(value);
  if (!value.is_object() || indent.size() + line.size() < kWidth) return line;
  std::string text;
  bool after_short = false;
  for (const auto& [name, member] : value.items()) {
    const std::string content = Text(member, indent + "  ");
    const bool is_short = !member.is_object() && content.size() < kShort;
    text += text.empty()              ? "{\n" + indent + "  "
            : after_short && is_short ? ", "
                                      : ",\n" + indent + "  ";
    text += Json(name).dump() + ": " + content;
    after_short = is_short;
  }
  return text + '\n' + indent + '}';
}

std::string SchemaText() {
  Json schema = {
      {"$schema", "https://json-schema.org/draft/2020-12/schema"},
      {"$id", "state.schema.json"},
      {"title", "A device's state"},
      {"description",
       "What export prints, diff and import read, and a simulator starts from and saves. "
       "A member that is missing stays as it is. Members for a simulated device only are ignored "
       "by "
       "import and diff. Comments (// and /* */) are allowed."}};
  schema.update(SchemaOf(state_document::Root(), true));
  schema["$defs"] = Definitions();
  return Text(schema) + '\n';
}

TEST(Schema, File_IsMadeFromTheTable) {
  const std::string schema = SchemaText();
  if (std::getenv("NETWORKGRPC_REGENERATE") != nullptr)
    std::ofstream(NETWORKGRPC_STATE_SCHEMA) << schema;
  std::ifstream file(NETWORKGRPC_STATE_SCHEMA);
  const std::string text{std::istreambuf_iterator<char>(file), {}};

  EXPECT_EQ(text, schema);
}

}  // namespace
