#include "tools/observation.h"

#include <algorithm>
#include <vector>

#include "tools/dante.h"
#include "tools/failure.h"
#include "tools/host_settings.h"
#include "tools/interface.h"
#include "tools/json_path.h"
#include "tools/state.h"
#include "tools/switch.h"

namespace tool {
namespace {

[[noreturn]] void ThrowUsage(const std::string& message) {
  throw Failure(ExitStatus::kUsage, message);
}

}  // namespace

Json ObserveNetwork() {
  Json live = {{"switch_mode", ReadSwitchModeInEffect().id()},
               {"dns", ReadDnsServers()},
               {"gateway", ReadGateway()},
               {"interfaces", Json::array()}};
  for (const auto& it : ReadInterfaces()) {
    Json entry = {{"name", it.name}};
    entry.update(ToJson(it)["in_effect"]);
    live["interfaces"].push_back(entry);
  }
  return {{"network", ReadNetworkState()}, {"live", live}};
}

Json ObserveDante() {
  const Json clock = ReadPtp()["clock"];
  return {{"dante", ReadDanteState()}, {"live", {{"ptp", {{"clock", clock}}}}}};
}

// A path in brackets may contain an equals sign.
Target TargetOf(const std::string& option, const std::string& text) {
  bool inside = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '[' || text[i] == ']') inside = text[i] == '[';
    if (text[i] != '=' || inside || i == 0) continue;
    CheckPath(option, text.substr(0, i));
    return {text.substr(0, i), text.substr(i + 1)};
  }
  ThrowUsage(option + " " + text + " is not FIELD=VALUE");
}

bool Holds(const Target& target, const Json& observed) {
  const auto is_value = [&](const Json& it) {
    return (it.is_string() ? it.get<std::string>() : it.dump()) == target.value;
  };
  const std::vector<Json> values = ValuesAt(observed, target.path);
  return std::any_of(values.begin(), values.end(), is_value);
}

// What is misspelt would be waited for in vain.
void CheckPath(const std::string& option, const std::string& path) {
  const std::string first = path.substr(0, path.find_first_of(".["));
  if (first != "network" && first != "dante" && first != "live")
    ThrowUsage(option + " " + path + ": a path begins with network, dante or live");
}

}  // namespace tool
