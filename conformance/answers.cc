// Every RPC is answered. The settings are set to what they are.
#include "conformance/check.h"
#include "conformance/setting.h"

namespace conformance {
namespace {

// Of the reads that have parameters.
Json RequestOf(Session& it, const std::string& method) {
  if (MethodOf(method).request->fields.empty()) return Json::object();
  if (method == "GetRxChannelLink") return FindSetting("SetRxChannelName")->read(it, nullptr);
  Json ids = Json::array();
  for (const Json& interface : it.Member("GetAvailableInterfaces", "interfaces"))
    ids.push_back(interface["id"]);
  if (method != "GetRoutingForInterface") return {{"ids", ids}};
  if (ids.empty()) throw Skipped{"the device has no interfaces"};
  return {{"id", ids.front()}};
}

Check Answer(const std::string& method) {
  const bool is_read = method.compare(0, 3, "Get") == 0;
  Check check{"answers." + method,
              DaemonOf(method),
              is_read                    ? Effect::kReads
              : method == "FactoryReset" ? Effect::kFactoryReset
                                         : Effect::kChanges,
              "",
              "",
              {}};
  if (is_read) {
    check.expected = "Status OK and a reply of type " + MethodOf(method).reply->name;
    check.advice = "implement " + method + "; other checks that need it were skipped";
    check.run = [method](Session& it) { it.Read(method, RequestOf(it, method)); };
  } else if (method.compare(0, 6, "Reload") == 0) {
    check.expected = "Status OK, with success true";
    check.advice = "implement " + method + "; what is stored was checked when it was stored";
    check.run = [method](Session& it) { Expect(it.Change(method), method + " was rejected"); };
  } else {
    check.expected = "Status OK, with success true or false, or the status of a rejection";
    check.advice =
        "implement " + method + "; reject what it cannot do with success false, not with a failure";
    check.run = [method](Session& it) {
      const Setting* const setting = FindSetting(method);
      it.Change(method, setting != nullptr ? setting->read(it, nullptr) : Json::object());
    };
  }
  return check;
}

}  // namespace

Checks Answers() {
  Checks checks;
  for (const wire_schema::WireMethod& method : wire_schema::AllMethods())
    checks.push_back(Answer(method.name));
  return checks;
}

}  // namespace conformance
