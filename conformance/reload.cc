// Stored against in effect.
#include <chrono>
#include <thread>

#include "conformance/check.h"
#include "conformance/setting.h"

namespace conformance {
namespace {

Json StatusOf(Session& it, const Json& interface) {
  const Json list = it.Member("GetNetworkStatus", "status", {{"ids", {interface["id"]}}});
  Expect(!list.empty(), "no status of interface " + interface["id"].dump());
  return list.front();
}

Json ModeInEffect(Session& it) { return it.Read("GetSwitchModeStatus")["id"]; }

// A daemon replies first and applies then: a look every 50 ms, for as long as a call may
// take.
void WaitUntil(Session& it, const std::string& problem, const std::function<bool()>& is_so) {
  constexpr auto kPause = std::chrono::milliseconds(50);
  const auto end = std::chrono::steady_clock::now() +
                   std::chrono::milliseconds(static_cast<int>(it.limits.timeout * 1000));
  while (!is_so()) {
    Expect(std::chrono::steady_clock::now() < end, problem);
    std::this_thread::sleep_for(kPause);
  }
}

void Reloads(Session& it) {
  Expect(it.Change("ReloadNetworkConfig"), "ReloadNetworkConfig was rejected");
}

// Stores another address. Returns what is sent.
Json StoreAddress(Session& it, const Json& interface) {
  const Setting& setting = *FindSetting("SetNetworkConfig");
  NeedAll(it, setting);
  const Json other = setting.other(it, setting.read(it, interface));
  if (!it.Change(setting.method, other)) throw Failed{"SetNetworkConfig rejected a valid address"};
  return other;
}

void StoreMode(Session& it, Json& mode) {
  const Setting& setting = *FindSetting("SetSwitchMode");
  NeedAll(it, setting);
  mode = setting.other(it, {{"id", ModeInEffect(it)}});
  if (!it.Change(setting.method, mode))
    throw Failed{"SetSwitchMode rejected a mode that is available"};
}

void StoredAddress(Session& it) {
  const Json interface = AnyInterface(it, true);
  const Json before = StatusOf(it, interface);
  StoreAddress(it, interface);
  Expect(StatusOf(it, interface) == before, "the address is in effect without a reload");
}

void StoredSwitchMode(Session& it) {
  const Json before = ModeInEffect(it);
  Json mode;
  StoreMode(it, mode);
  Expect(ModeInEffect(it) == before, "the switch mode is in effect without a reload");
}

void ReloadAddress(Session& it) {
  const Json interface = AnyInterface(it, true);
  const Json sent = StoreAddress(it, interface);
  Reloads(it);
  WaitUntil(it, "the stored address is not in effect", [&] {
    const Json status = StatusOf(it, interface);
    return status["ip"] == sent["ip"] && status["netmask"] == sent["netmask"];
  });
}

void ReloadSwitchMode(Session& it) {
  Json mode;
  StoreMode(it, mode);
  Reloads(it);
  WaitUntil(it, "the stored switch mode is not in effect",
            [&] { return ModeInEffect(it) == mode["id"]; });
}

// What one reload reads is not what the other, or any, loses.
void KeepsStored(Session& it, const char* reload) {
  const auto stored = [&] {
    Json all = Json::array();
    for (const char* method : {"SetNetworkConfig", "SetSwitchMode", "SetHostname", "SetNTPServer"})
      all.push_back(FindSetting(method)->read(it, nullptr));
    return all;
  };
  const Setting& ntp = *FindSetting("SetNTPServer");
  NeedAll(it, ntp);
  it.Change(ntp.method, ntp.other(it, ntp.read(it, nullptr)));
  const Json before = stored();
  Expect(it.Change(reload), std::string(reload) + " was rejected");
  Expect(stored() == before, "a stored setting has changed");
}

}  // namespace

Checks Reload() {
  const auto changes = [](const char* name, const char* expected, const char* advice,
                          void (*run)(Session&)) {
    return Check{name, tool::Daemon::kNetworkManager, Effect::kChanges, expected, advice, run};
  };
  return {
      changes("stored.Address", "SetNetworkConfig changes nothing that is in effect",
              "only store the configuration; ReloadNetworkConfig applies it", StoredAddress),
      changes("stored.SwitchMode", "SetSwitchMode changes nothing that is in effect",
              "only store the mode; ReloadNetworkConfig applies it", StoredSwitchMode),
      changes("reload.Address", "After ReloadNetworkConfig, the stored address is in effect",
              "apply the configuration of every interface, soon after the reply", ReloadAddress),
      changes("reload.SwitchMode", "After ReloadNetworkConfig, the stored switch mode is in effect",
              "apply the switch mode, soon after the reply", ReloadSwitchMode),
      changes("reload.NetworkKeepsStored", "ReloadNetworkConfig changes nothing that is stored",
              "read the stored settings, do not write them",
              [](Session& it) { KeepsStored(it, "ReloadNetworkConfig"); }),
      changes("reload.NtpKeepsStored", "ReloadNTPConfig changes nothing that is stored",
              "read the stored settings, do not write them",
              [](Session& it) { KeepsStored(it, "ReloadNTPConfig"); }),
  };
}

}  // namespace conformance
