// The form of the state document: what may stand where.
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <limits>

#include "tools/failure.h"
#include "tools/interfaces.h"
#include "tools/state.h"

namespace tool {
namespace {

[[noreturn]] void Wrong(const std::string& path, const std::string& what) {
  throw Failure(ExitStatus::kFailed, (path.empty() ? "the document" : path) + " " + what);
}

using Check = std::function<void(const std::string& path, const Json& value)>;

struct Member {
  std::string name;
  Check check;
  bool required = false;
};

Check Text() {
  return [](const std::string& path, const Json& value) {
    if (!value.is_string()) Wrong(path, "is not a text");
  };
}

Check Flag() {
  return [](const std::string& path, const Json& value) {
    if (!value.is_boolean()) Wrong(path, "is not true or false");
  };
}

Check Number(std::int64_t least, std::uint64_t most) {
  return [=](const std::string& path, const Json& value) {
    const bool fits = value.is_number_unsigned()
                          ? value.get<std::uint64_t>() <= most
                          : value.is_number_integer() && value.get<std::int64_t>() >= least;
    if (!fits) Wrong(path, "is not a whole number in its range");
  };
}

Check Unsigned() { return Number(0, std::numeric_limits<std::uint32_t>::max()); }
Check Id() {
  return Number(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
}

Check Anything() {
  return [](const std::string&, const Json&) {};
}

Check OrNull(const Check& check) {
  return [check](const std::string& path, const Json& value) {
    if (!value.is_null()) check(path, value);
  };
}

Check OneOf(const std::vector<std::string>& texts) {
  return [texts](const std::string& path, const Json& value) {
    std::string list;
    for (const std::string& text : texts) {
      if (value == text) return;
      list += (list.empty() ? "" : ", ") + text;
    }
    Wrong(path, "is none of " + list);
  };
}

Check ListOf(const Check& check) {
  return [check](const std::string& path, const Json& value) {
    if (!value.is_array()) Wrong(path, "is not a list");
    for (std::size_t i = 0; i < value.size(); ++i)
      check(path + "[" + std::to_string(i) + "]", value[i]);
  };
}

Check Object(const std::vector<Member>& members) {
  return [members](const std::string& path, const Json& value) {
    if (!value.is_object()) Wrong(path, "is not an object");
    const std::string prefix = path.empty() ? "" : path + ".";
    for (const Member& member : members)
      if (member.required && !value.contains(member.name))
        Wrong(prefix + member.name, "is missing");
    for (const auto& [name, content] : value.items()) {
      const Check* check = nullptr;
      for (const Member& member : members)
        if (member.name == name) check = &member.check;
      if (check == nullptr) Wrong(prefix + name, "is not known");
      (*check)(prefix + name, content);
    }
  };
}

// Two entries of a list with the same key would be one setting with two values.
Check Keyed(const Check& list, const std::string& key) {
  return [list, key](const std::string& path, const Json& value) {
    list(path, value);
    for (std::size_t i = 0; i < value.size(); ++i)
      for (std::size_t j = 0; j < i; ++j)
        if (value[i][key] == value[j][key])
          Wrong(path, "has " + key + " " + value[i][key].dump() + " twice");
  };
}

Check NameOrNumber(const std::vector<std::string>& names) {
  return [names](const std::string& path, const Json& value) {
    (value.is_number() ? Id() : OneOf(names))(path, value);
  };
}

Check Network() {
  const Check interface =
      Object({{"name", Text(), true},
              {"mode", NameOrNumber({"static", "dynamic", "dhcp-only", "link-local-only"})},
              {"ip", Text()},
              {"netmask", Text()},
              {"gateway", Text()},
              {"dns", ListOf(Text())},
              {"id", Id()},
              {"mac", Text()},
              {"speed", Anything()},
              {"lease", Anything()},
              {"link_local", Anything()},
              {"live", Anything()},
              {"flag6", Anything()},
              {"flag7", Anything()},
              {"flag8", Anything()}});
  return Object({{"hostname", Text()},
                 {"ntp", ListOf(Text())},
                 {"switch_mode", Id()},
                 {"interfaces", Keyed(ListOf(interface), "name")},
                 {"switch_modes", Anything()},
                 {"switch_mode_in_effect", Anything()},
                 {"ntp_in_effect", Anything()}});
}

Check Routing() {
  const Check raw =
      Object({{"ip", Text()},
              {"value2", Unsigned()},
              {"value3", Unsigned()},
              {"value4", Unsigned()},
              {"value5", Unsigned()},
              {"value6", Unsigned()},
              {"encoding", NameOrNumber({"L24", "L16"})},
              {"sip", Text()},
              {"session_id", OrNull(Number(0, std::numeric_limits<std::uint64_t>::max()))}});
  return Keyed(ListOf(Object({{"rx_channel", Id(), true},
                              {"device", Text()},
                              {"channel", Text()},
                              {"raw", OrNull(raw)},
                              {"flag5", Anything()}})),
               "rx_channel");
}

Check Dante() {
  std::vector<Member> members = {
      {"name", Text()},      {"sample_rate", Unsigned()},   {"latency", Unsigned()},
      {"aes67", Flag()},     {"transmit_disabled", Flag()}, {"ptp_slave_only", Flag()},
      {"routing", Routing()}};
  members.push_back(
      {"tx_channels",
       Keyed(ListOf(Object({{"id", Id(), true}, {"name", Text()}, {"default_name", Text()}})),
             "id")});
  for (const char* name :
       {"rx_channels", "manufacturer", "model_name", "model_version", "software_version",
        "firmware_version", "sample_rates", "min_latency", "aes67_available", "ptp"})
    members.push_back({name, Anything()});
  return Object(members);
}

Check Schema() {
  return [](const std::string& path, const Json& value) {
    if (value != 1) Wrong(path, "is not 1");
  };
}

// 1 for the first line.
std::size_t LineOf(const std::string& text, std::size_t byte) {
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(byte, text.size()));
  return 1 + static_cast<std::size_t>(std::count(text.begin(), end, '\n'));
}

std::string Contents(const std::string& file) {
  if (file == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw Failure(ExitStatus::kFailed, "cannot read " + file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

Json Without(Json object, const std::vector<std::string>& members) {
  for (const std::string& member : members) object.erase(member);
  return object;
}

}  // namespace

Json ReadStateFile(const std::string& file) {
  const std::string text = Contents(file);
  Json document;
  try {
    document = Json::parse(text, nullptr, true, true);  // with comments
  } catch (const Json::parse_error& error) {
    throw Failure(ExitStatus::kFailed, file + ":" + std::to_string(LineOf(text, error.byte)) +
                                           ": not a JSON document: " + error.what());
  }
  try {
    Object({{"schema", Schema(), true},
            {"network", Network()},
            {"dante", Dante()},
            {"faults", Anything()}})("", document);
  } catch (const Failure& failure) {
    throw Failure(ExitStatus::kFailed, file + ": " + failure.what());
  }
  return document;
}

Json Settable(const Json& document) {
  Json result = Without(document, {"faults"});
  if (result.contains("network")) {
    Json& network = result["network"];
    network = Without(network, {"switch_modes", "switch_mode_in_effect", "ntp_in_effect"});
    if (network.contains("interfaces"))
      for (Json& it : network["interfaces"]) {
        it = Without(
            it, {"id", "mac", "speed", "lease", "link_local", "live", "flag6", "flag7", "flag8"});
        if (it.contains("mode") && it["mode"].is_number()) it["mode"] = ModeToJson(it["mode"]);
      }
  }
  if (!result.contains("dante")) return result;
  Json& dante = result["dante"];
  dante = Without(dante,
                  {"rx_channels", "manufacturer", "model_name", "model_version", "software_version",
                   "firmware_version", "sample_rates", "min_latency", "aes67_available", "ptp"});
  if (dante.contains("tx_channels"))
    for (Json& it : dante["tx_channels"]) it = Without(it, {"default_name"});
  if (dante.contains("routing"))
    for (Json& it : dante["routing"]) it = Without(it, {"flag5"});
  return result;
}

}  // namespace tool
