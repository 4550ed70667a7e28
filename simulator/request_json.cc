#include "simulator/request_json.h"

namespace network = ostrevan::networkmanager;
namespace dante = ostrevan::grpcdapi;

namespace simulator {
namespace {

template <class List>
Json ListToJson(const List& list) {
  Json json = Json::array();
  for (const auto& entry : list) json.push_back(entry);
  return json;
}

Json ToJson(const network::InterfaceWifiConfig& wifi) {
  return {{"flag1", wifi.flag1()}, {"ssid", wifi.ssid()},           {"password", wifi.password()},
          {"flag4", wifi.flag4()}, {"AP_region", wifi.ap_region()}, {"value6", wifi.value6()}};
}

Json ToJson(const dante::rawLinkInfo& raw) {
  Json json = {{"ip", raw.ip()},
               {"value2", raw.value2()},
               {"value3", raw.value3()},
               {"value4", raw.value4()},
               {"value5", raw.value5()},
               {"value6", raw.value6()},
               {"encoding", static_cast<int>(raw.encoding())}};
  json["sessionId"] = raw.has_sessionid() ? Json(raw.sessionid()) : Json(nullptr);
  json["sip"] = raw.sip();
  return json;
}

}  // namespace

Json ToJson(const ostrevan::common::Empty&) { return Json::object(); }

Json ToJson(const network::Ids& request) {
  Json json;
  json["ids"] = ListToJson(request.ids());
  return json;
}

Json ToJson(const network::Id& request) {
  Json json;
  json["id"] = request.id();
  return json;
}

Json ToJson(const network::InterfaceConfig& request) {
  Json json = {{"id", request.id()},
               {"mode", static_cast<int>(request.mode())},
               {"ip", request.ip()},
               {"netmask", request.netmask()},
               {"gateway", request.gateway()}};
  json["dns"] = ListToJson(request.dns());
  json["flag7"] = request.flag7();
  json["flag8"] = request.flag8();
  json["wifi"] = request.has_wifi() ? ToJson(request.wifi()) : Json(nullptr);
  return json;
}

Json ToJson(const network::Hostname& request) {
  Json json;
  json["hostname"] = request.hostname();
  return json;
}

Json ToJson(const network::NTPServer& request) {
  Json json;
  json["servers"] = ListToJson(request.servers());
  return json;
}

Json ToJson(const dante::Name& request) {
  Json json;
  json["name"] = request.name();
  return json;
}

Json ToJson(const dante::Channel& request) {
  return {{"id", request.id()}, {"name", request.name()}, {"defaultName", request.defaultname()}};
}

Json ToJson(const dante::LinkInfo& request) {
  Json json = {{"id", request.id()},
               {"deviceName", request.devicename()},
               {"channelName", request.channelname()}};
  json["raw"] = request.has_raw() ? ToJson(request.raw()) : Json(nullptr);
  json["flag5"] = request.flag5();
  return json;
}

Json ToJson(const dante::Latency& request) {
  Json json;
  json["latency"] = request.latency();
  return json;
}

Json ToJson(const dante::SampleRate& request) {
  Json json;
  json["sampleRate"] = request.samplerate();
  return json;
}

Json ToJson(const dante::Status& request) {
  Json json;
  json["status"] = request.status();
  return json;
}

}  // namespace simulator
