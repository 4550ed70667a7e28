#include "tools/snapshot.h"

#include <algorithm>
#include <optional>

#include "terminal/joined.h"
#include "tools/call.h"
#include "tools/interface.h"
#include "tools/pending.h"
#include "tools/state.h"
#include "tools/state_plan.h"
#include "tools/switch.h"

namespace tool {
namespace {

using Config = nm::InterfaceConfig;

Json ToBytes(const Config& config) {
  const std::string bytes = config.SerializeAsString();
  return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

Config FromBytes(const Json& json) {
  const auto bytes = json.get<std::vector<std::uint8_t>>();
  Config config;
  if (!config.ParseFromString(std::string(bytes.begin(), bytes.end())))
    throw Failure(ExitStatus::kFailed, "the checkpoint's file is damaged");
  return config;
}

bool AreEqual(const Config& one, const Config& other) {
  return one.SerializeAsString() == other.SerializeAsString();
}

Config StoredOf(const Interface& interface) {
  if (interface.stored.has_value()) return *interface.stored;
  Config config;
  config.set_id(interface.id);
  return config;
}

std::string GatewayOf(const Interface& interface) {
  nm::Id id;
  id.set_id(interface.id);
  const auto routing = ReadIfImplemented(rpc::kGetRoutingForInterface,
                                         "read the gateway of '" + interface.name + "'", id);
  return routing ? routing->gateway() : "";
}

// What was in effect where something else is stored: the daemon reports only a part of it.
Config InEffect(const Interface& interface) {
  Config config = StoredOf(interface);
  if (!interface.IsPending().value_or(false) || !interface.IsActive()) return config;
  config.set_ip(interface.status->ip());
  config.set_netmask(interface.status->netmask());
  config.set_gateway(GatewayOf(interface));
  return config;
}

Json TakeInterfaces() {
  Json list = Json::array();
  for (const Interface& it : ReadInterfaces())
    list.push_back({{"name", it.name},
                    {"stored", ToBytes(StoredOf(it))},
                    {"in_effect", ToBytes(InEffect(it))},
                    {"is_active", it.IsActive()},
                    {"is_static", StoredOf(it).mode() == nm::STATIC}});
  return list;
}

// --- Restoring ---------------------------------------------------------------------

// Goes on after a failure, and throws the first in the end.
class Attempts {
 public:
  void Try(const std::function<void()>& function) {
    try {
      function();
    } catch (const Failure& failure) {
      if (!first.has_value()) first = failure;
    }
  }

  void Finish() const {
    if (first.has_value()) throw Failure(*first);
  }

 private:
  std::optional<Failure> first;
};

const Interface* Find(const std::vector<Interface>& interfaces, const Json& entry) {
  for (const Interface& it : interfaces)
    if (it.name == entry["name"]) return &it;
  return nullptr;
}

// Whether an interface has what was in effect. Of one whose addresses the network assigns
// only the daemon knows.
bool IsInEffect(const Interface& now, const Json& entry) {
  if (!entry["is_static"].get<bool>()) return true;
  const Config before = FromBytes(entry["in_effect"]);
  if (now.IsActive() != entry["is_active"].get<bool>()) return false;
  return !now.IsActive() ||
         (now.status->ip() == before.ip() && now.status->netmask() == before.netmask());
}

bool IsStored(const Interface& now, const Json& entry) {
  return AreEqual(StoredOf(now), FromBytes(entry["stored"]));
}

bool NeedsReload(const std::vector<Interface>& interfaces, const Json& snapshot) {
  if (ReadSwitchModeInEffect().id() != snapshot["switch_mode_in_effect"]) return true;
  const Json& entries = snapshot["interfaces"];
  return std::any_of(entries.begin(), entries.end(), [&](const Json& entry) {
    const Interface* const now = Find(interfaces, entry);
    if (now == nullptr) return false;
    const bool is_dynamic = !entry["is_static"].get<bool>();
    const bool was_pending = entry["stored"] != entry["in_effect"];
    if (!IsInEffect(*now, entry)) return true;
    // Gateway and DNS of a static address, and dynamic modes, are not reported.
    return !IsStored(*now, entry) && (is_dynamic || !was_pending) &&
           !now->IsPending().value_or(false);
  });
}

void StoreInterfaces(const std::vector<Interface>& interfaces, const Json& snapshot,
                     const char* which) {
  Attempts attempts;
  for (const Json& entry : snapshot["interfaces"]) {
    attempts.Try([&] {
      const Interface* const now = Find(interfaces, entry);
      if (now == nullptr)
        throw Failure(ExitStatus::kNotFound,
                      "interface '" + entry["name"].get<std::string>() + "' is not there");
      const Config config = FromBytes(entry[which]);
      if (!AreEqual(StoredOf(*now), config)) StoreConfiguration(*now, config);
    });
  }
  attempts.Finish();
}

void StoreSwitchMode(std::int32_t id) {
  if (ReadStoredSwitchMode().id() != id) SelectSwitchMode(id);
}

void RestoreInterfaces(const Json& snapshot, bool& must_reload, const std::function<void()>& save) {
  if (!must_reload && NeedsReload(ReadInterfaces(), snapshot)) {
    must_reload = true;
    save();
  }
  if (must_reload) {
    StoreInterfaces(ReadInterfaces(), snapshot, "in_effect");
    StoreSwitchMode(snapshot["switch_mode_in_effect"]);
    ReloadNetwork();
    must_reload = false;
    save();
  }
  StoreInterfaces(ReadInterfaces(), snapshot, "stored");
  StoreSwitchMode(snapshot["document"]["network"]["switch_mode"]);
  for (const Interface& it : ReadInterfaces())
    for (const Json& entry : snapshot["interfaces"])
      if (entry["name"] == it.name && (!IsStored(it, entry) || !IsInEffect(it, entry)))
        throw Failure(ExitStatus::kFailed, "interface '" + it.name + "' is not yet as it was");
}

bool IsOfInterfaces(const Step& step) {
  return step.effect == Effect::kNetworkReload;  // RestoreInterfaces does these
}

void RestoreSettings(const Json& snapshot, const Json& current) {
  Attempts attempts;
  bool ntp = false;
  for (const Step& step : Plan(current, snapshot["document"])) {
    if (IsOfInterfaces(step)) continue;
    attempts.Try([&] {
      if (step.from.is_null())
        throw Failure(ExitStatus::kNotFound, step.path + " is not on the device");
      step.set();
      ntp = ntp || step.effect == Effect::kNtpReload;
    });
  }
  if (ntp) attempts.Try(ReloadNtp);
  attempts.Finish();
}

Json ReadPart(const char* part) {
  return {{part, part == std::string("network") ? ReadNetworkState() : ReadDanteState()}};
}

}  // namespace

Json TakeSnapshot(Daemon of) {
  Json snapshot = {{"document", Json::object()}};
  if (of != Daemon::kDante) {
    snapshot["document"]["network"] = ReadNetworkState();
    snapshot["interfaces"] = TakeInterfaces();
    snapshot["switch_mode_in_effect"] = ReadSwitchModeInEffect().id();
  }
  if (of != Daemon::kNetworkManager) snapshot["document"]["dante"] = ReadDanteState();
  return snapshot;
}

std::vector<std::string> NotRestoredExactly(const Json& snapshot) {
  std::vector<std::string> lines;
  if (!snapshot.contains("interfaces")) return lines;
  std::vector<std::string> assigned;
  for (const Json& it : snapshot["interfaces"]) {
    if (!it["is_static"].get<bool>()) assigned.push_back(it["name"]);
    if (it["stored"] != it["in_effect"])
      lines.push_back("not restored exactly: of interface '" + it["name"].get<std::string>() +
                      "', which has a change that is not in effect, daemons report neither mode "
                      "nor DNS servers in effect");
  }
  if (!assigned.empty())
    lines.push_back("not restored exactly: the network may assign other addresses to " +
                    terminal::Joined(assigned));
  lines.emplace_back(
      "not restored exactly: whether stored NTP servers are in effect is not reported");
  return lines;
}

void Restore(const Json& snapshot, bool& must_reload, const std::function<void()>& save) {
  Attempts attempts;
  const Json& document = snapshot["document"];
  if (document.contains("network")) {
    attempts.Try([&] { RestoreInterfaces(snapshot, must_reload, save); });
    attempts.Try([&] { RestoreSettings(snapshot, ReadPart("network")); });
  }
  if (document.contains("dante"))
    attempts.Try([&] { RestoreSettings(snapshot, ReadPart("dante")); });
  attempts.Finish();
}

}  // namespace tool
