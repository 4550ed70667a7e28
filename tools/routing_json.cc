#include "tools/routing_json.h"

#include "state_document/table.h"

namespace tool {

namespace dapi = ostrevan::grpcdapi;
using state_document::kEncodings;

// A raw message without an address describes no stream.
Json ToJson(const dapi::LinkInfo& link) {
  Json entry = {{"rx_channel", link.id()},
                {"device", link.devicename()},
                {"channel", link.channelname()},
                {"raw", nullptr},
                {"flag5", link.flag5()}};
  const dapi::rawLinkInfo& raw = link.raw();
  if (raw.ip().empty()) return entry;
  entry["raw"] = {{"ip", raw.ip()},
                  {"value2", raw.value2()},
                  {"value3", raw.value3()},
                  {"value4", raw.value4()},
                  {"value5", raw.value5()},
                  {"value6", raw.value6()},
                  {"encoding", state_document::NameOf(kEncodings, raw.encoding())},
                  {"sip", raw.sip()},
                  {"session_id", raw.has_sessionid() ? Json(raw.sessionid()) : Json()}};
  return entry;
}

dapi::LinkInfo Unsubscribed(std::int32_t rx_channel) {
  dapi::LinkInfo link;
  link.set_id(rx_channel);
  return link;
}

dapi::LinkInfo LinkFromJson(const Json& entry) {
  dapi::LinkInfo link;
  link.set_id(entry.at("rx_channel"));
  link.set_devicename(entry.at("device").get<std::string>());
  link.set_channelname(entry.at("channel").get<std::string>());
  link.set_flag5(entry.value("flag5", false));
  const Json& from = entry.at("raw");
  if (from.is_null()) return link;
  dapi::rawLinkInfo& raw = *link.mutable_raw();
  raw.set_ip(from.at("ip").get<std::string>());
  raw.set_value2(from.at("value2"));
  raw.set_value3(from.at("value3"));
  raw.set_value4(from.at("value4"));
  raw.set_value5(from.at("value5"));
  raw.set_value6(from.at("value6"));
  raw.set_encoding(
      static_cast<dapi::Encoding>(state_document::NumberOf(kEncodings, from.at("encoding"))));
  raw.set_sip(from.at("sip").get<std::string>());
  if (!from.at("session_id").is_null()) raw.set_sessionid(from.at("session_id"));
  return link;
}

std::string SourceText(const Json& entry) {
  if (!entry["raw"].is_null()) return "stream " + entry["raw"]["ip"].get<std::string>();
  const std::string channel = entry["channel"];
  const std::string device = entry["device"];
  return channel.empty() && device.empty() ? "" : channel + " @ " + device;
}

}  // namespace tool
