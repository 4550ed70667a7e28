#include "state_document/table.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace state_document {
namespace {

template <class Number>
constexpr Type Integer() {
  return {Kind::kInteger, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()};
}

constexpr Type NameOrNumber(const Names& names) {
  Type type = Integer<std::int32_t>();
  type.kind = Kind::kNameOrNumber;
  type.names = &names;
  return type;
}

constexpr Type OrNull(Type type) {
  type.or_null = true;
  return type;
}

constexpr Type kObject{Kind::kObject};
constexpr Type kString{Kind::kString};
constexpr Type kBoolean{Kind::kBoolean};
constexpr Type kOne{Kind::kInteger, 1, 1};
constexpr Type kInt32 = Integer<std::int32_t>();
constexpr Type kUint32 = Integer<std::uint32_t>();
constexpr Type kUint64 = Integer<std::uint64_t>();

constexpr Type OneOf(const Names& names) { return {Kind::kName, 0, 0, &names}; }

// "network.interfaces[].name" is network, interfaces, [], name.
std::vector<std::string> Steps(const std::string& path) {
  std::vector<std::string> steps(1);
  for (const char character : path) {
    if (character == '.' || character == '[') steps.emplace_back();
    if (character != '.') steps.back() += character;
  }
  return steps;
}

Node& Child(Node& parent, const std::string& name) {
  for (Node& child : parent.children)
    if (child.name == name) return child;
  if (name == "[]") parent.type.kind = Kind::kList;
  parent.children.push_back({name, {}, kSimulated, "", {}});
  return parent.children.back();
}

unsigned MarkSettable(Node& node) {
  for (Node& child : node.children) node.use |= MarkSettable(child) & kSettable;
  return node.use;
}

Node Tree() {
  Node root;
  for (const Member& member : Table()) {
    Node* node = &root;
    for (const std::string& step : Steps(member.path)) node = &Child(*node, step);
    node->type = member.type;
    node->use = member.use;
    node->note = member.note;
  }
  MarkSettable(root);
  return root;
}

}  // namespace

const std::vector<Member>& Table() {
  static const std::vector<Member> table{
      {"schema", kOne, kSettable | kRequired, "The form of this document"},

      {"network.hostname", kString, kSettable},
      {"network.ntp[]", kString, kSettable, "Stored NTP servers"},
      {"network.switch_mode", kInt32, kSettable, "Id of the stored mode"},
      {"network.interfaces[].name", kString, kSettable | kKey},
      {"network.interfaces[].mode", NameOrNumber(kAddressingModes), kSettable,
       "A number if the mode has no name"},
      {"network.interfaces[].ip", kString, kSettable, "Stored, also when not in effect"},
      {"network.interfaces[].netmask", kString, kSettable},
      {"network.interfaces[].gateway", kString, kSettable},
      {"network.interfaces[].dns[]", kString, kSettable},
      {"network.interfaces[].id", kInt32, kUnique},
      {"network.interfaces[].mac", kString},
      {"network.interfaces[].speed", NameOrNumber(kLinkSpeeds), kSimulated, "In Mbit/s"},
      {"network.interfaces[].lease", OrNull(kObject)},
      {"network.interfaces[].lease.ip", kString},
      {"network.interfaces[].lease.netmask", kString},
      {"network.interfaces[].lease.gateway", kString},
      {"network.interfaces[].lease.dns[]", kString},
      {"network.interfaces[].link_local.ip", kString},
      {"network.interfaces[].link_local.netmask", kString},
      {"network.interfaces[].link_local.gateway", kString},
      {"network.interfaces[].link_local.dns[]", kString},
      {"network.interfaces[].flag6", kBoolean},
      {"network.interfaces[].flag7", kBoolean},
      {"network.interfaces[].flag8", kBoolean},
      {"network.interfaces[].live.ip", kString},
      {"network.interfaces[].live.netmask", kString},
      {"network.interfaces[].live.gateway", kString},
      {"network.interfaces[].live.dns[]", kString},
      {"network.switch_modes[].id", kInt32, kKey},
      {"network.switch_modes[].name", kString},
      {"network.switch_mode_in_effect", kInt32},
      {"network.ntp_in_effect[]", kString},

      {"dante.name", kString, kSettable},
      {"dante.sample_rate", kUint32, kSettable, "In the daemon's unit"},
      {"dante.latency", kUint32, kSettable, "In the daemon's unit"},
      {"dante.aes67", kBoolean, kSettable},
      {"dante.transmit_disabled", kBoolean, kSettable},
      {"dante.ptp_slave_only", kBoolean, kSettable},
      {"dante.tx_channels[].id", kInt32, kSettable | kKey},
      {"dante.tx_channels[].name", kString, kSettable},
      {"dante.tx_channels[].default_name", kString},
      {"dante.routing[]", kObject, kWhole,
       "Both device and channel, or raw with an ip, or none of these"},
      {"dante.routing[].rx_channel", kInt32, kSettable | kKey},
      {"dante.routing[].device", kString, kSettable},
      {"dante.routing[].channel", kString, kSettable},
      {"dante.routing[].raw", OrNull(kObject)},
      {"dante.routing[].raw.ip", kString, kSettable | kRequired},
      {"dante.routing[].raw.value2", kUint32, kSettable},
      {"dante.routing[].raw.value3", kUint32, kSettable},
      {"dante.routing[].raw.value4", kUint32, kSettable},
      {"dante.routing[].raw.value5", kUint32, kSettable},
      {"dante.routing[].raw.value6", kUint32, kSettable},
      {"dante.routing[].raw.encoding", NameOrNumber(kEncodings), kSettable},
      {"dante.routing[].raw.sip", kString, kSettable},
      {"dante.routing[].raw.session_id", OrNull(kUint64), kSettable},
      {"dante.routing[].flag5", kBoolean, kSettable, "Defined by the daemon"},
      {"dante.rx_channels[].id", kInt32, kSettable | kKey},
      {"dante.rx_channels[].name", kString, kSettable},
      {"dante.rx_channels[].default_name", kString},
      {"dante.manufacturer", kString},
      {"dante.model_name", kString},
      {"dante.model_version", kString},
      {"dante.software_version", kString},
      {"dante.firmware_version", kString},
      {"dante.sample_rates[]", kUint32, kSimulated, "In Hz"},
      {"dante.min_latency", kUint32, kSimulated, "In microseconds"},
      {"dante.aes67_available", kBoolean},
      {"dante.ptp.config_value1", kUint32},
      {"dante.ptp.config_value2", kUint32},
      {"dante.ptp.status_value1", kInt32},
      {"dante.ptp.clock", NameOrNumber(kClocks)},

      {"faults[].method", kString, kRequired},
      {"faults[].fault", OneOf(kFaults)},
      {"faults[].status", OneOf(kStatuses)},
      {"faults[].message", kString},
      {"faults[].delay_ms", kUint32},
      {"faults[].times", kUint32, kSimulated, "0 for every call"},
      {"faults[].after", kUint32},
      {"faults[].when", kString, kSimulated, "A JSON object"},
      {"faults[].request", kString, kSimulated, "A JSON object"},
      {"faults[].answer", kString, kSimulated, "A JSON object"},
      {"faults[].then", kString},
  };
  return table;
}

const Node* Node::Find(const std::string& child) const {
  const auto found = std::find_if(children.begin(), children.end(),
                                  [&](const Node& it) { return it.name == child; });
  return found != children.end() ? &*found : nullptr;
}

const Node* Node::Key() const {
  if (type.kind == Kind::kList)
    for (const Node& member : children.front().children)
      if ((member.use & kKey) == kKey) return &member;
  return nullptr;
}

const Node& Root() {
  static const Node root = Tree();
  return root;
}

std::string MemberPath(const std::string& path, const std::string& member) {
  return path.empty() ? member : path + '.' + member;
}

std::string EntryPath(const std::string& path, const std::string& entry) {
  return path + '[' + entry + ']';
}

Json NameOf(const Names& names, std::int64_t number) {
  const bool has_name = number >= 0 && number < static_cast<std::int64_t>(names.size());
  return has_name ? Json(names[static_cast<std::size_t>(number)]) : Json(number);
}

std::int32_t NumberOf(const Names& names, const Json& value) {
  if (value.is_number()) return value.get<std::int32_t>();
  return static_cast<std::int32_t>(std::find(names.begin(), names.end(), value) - names.begin());
}

}  // namespace state_document
