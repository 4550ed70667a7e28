// The requests of both services as JSON for the call log, with the member names
// of the schema. Written by hand, because protobuf's lite runtime does not know
// the names.
#pragma once

#include "ostrevan/grpcdapi.pb.h"
#include "ostrevan/networkmanager.pb.h"
#include "simulator/json.h"

namespace simulator {

template <class List>
Json ListToJson(const List& list) {
  Json json = Json::array();
  for (const auto& entry : list) json.push_back(entry);
  return json;
}

inline Json ToJson(const ostrevan::common::Empty&) { return Json::object(); }

// --- Network manager -----------------------------------------------------------

inline Json ToJson(const ostrevan::networkmanager::Ids& it) {
  return Json::object({{"ids", ListToJson(it.ids())}});
}

inline Json ToJson(const ostrevan::networkmanager::Id& it) {
  return Json::object({{"id", it.id()}});
}

inline Json ToJson(const ostrevan::networkmanager::InterfaceWifiConfig& it) {
  return {{"flag1", it.flag1()}, {"ssid", it.ssid()},           {"password", it.password()},
          {"flag4", it.flag4()}, {"AP_region", it.ap_region()}, {"value6", it.value6()}};
}

inline Json ToJson(const ostrevan::networkmanager::InterfaceConfig& it) {
  return {{"id", it.id()},
          {"mode", static_cast<int>(it.mode())},
          {"ip", it.ip()},
          {"netmask", it.netmask()},
          {"gateway", it.gateway()},
          {"dns", ListToJson(it.dns())},
          {"flag7", it.flag7()},
          {"flag8", it.flag8()},
          {"wifi", it.has_wifi() ? ToJson(it.wifi()) : Json(nullptr)}};
}

inline Json ToJson(const ostrevan::networkmanager::Hostname& it) {
  return Json::object({{"hostname", it.hostname()}});
}

inline Json ToJson(const ostrevan::networkmanager::NTPServer& it) {
  return Json::object({{"servers", ListToJson(it.servers())}});
}

// --- Dante API -----------------------------------------------------------------

inline Json ToJson(const ostrevan::grpcdapi::Name& it) {
  return Json::object({{"name", it.name()}});
}

inline Json ToJson(const ostrevan::grpcdapi::Channel& it) {
  return {{"id", it.id()}, {"name", it.name()}, {"defaultName", it.defaultname()}};
}

inline Json ToJson(const ostrevan::grpcdapi::rawLinkInfo& it) {
  return {{"ip", it.ip()},
          {"value2", it.value2()},
          {"value3", it.value3()},
          {"value4", it.value4()},
          {"value5", it.value5()},
          {"value6", it.value6()},
          {"encoding", static_cast<int>(it.encoding())},
          {"sessionId", it.has_sessionid() ? Json(it.sessionid()) : Json(nullptr)},
          {"sip", it.sip()}};
}

inline Json ToJson(const ostrevan::grpcdapi::LinkInfo& it) {
  return {{"id", it.id()},
          {"deviceName", it.devicename()},
          {"channelName", it.channelname()},
          {"raw", it.has_raw() ? ToJson(it.raw()) : Json(nullptr)},
          {"flag5", it.flag5()}};
}

inline Json ToJson(const ostrevan::grpcdapi::Latency& it) {
  return Json::object({{"latency", it.latency()}});
}

inline Json ToJson(const ostrevan::grpcdapi::SampleRate& it) {
  return Json::object({{"sampleRate", it.samplerate()}});
}

inline Json ToJson(const ostrevan::grpcdapi::Status& it) {
  return Json::object({{"status", it.status()}});
}

}  // namespace simulator
