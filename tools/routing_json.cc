#include "tools/routing_json.h"

#include "state_document/table.h"

namespace tool {

using state_document::kEncodings;

Json ToJson(const DantegRPC::ChannelLink& link) {
  Json entry = {{"rx_channel", link.rxChannelId},
                {"device", link.deviceName},
                {"channel", link.channelName},
                {"raw", nullptr}};
  if (!link.isRaw) return entry;
  entry["raw"] = {{"ip", link.ip},
                  {"value2", link.value2},
                  {"value3", link.value3},
                  {"value4", link.value4},
                  {"value5", link.value5},
                  {"value6", link.value6},
                  {"encoding", state_document::NameOf(kEncodings, link.encoding)},
                  {"sip", link.sip},
                  {"session_id", link.hasSessionId ? Json(link.sessionId) : Json(nullptr)}};
  return entry;
}

DantegRPC::ChannelLink Unsubscribed(std::int32_t rx_channel) {
  DantegRPC::ChannelLink link;
  link.rxChannelId = rx_channel;
  return link;
}

DantegRPC::ChannelLink LinkFromJson(const Json& entry) {
  DantegRPC::ChannelLink link;
  link.rxChannelId = entry.at("rx_channel");
  link.deviceName = entry.at("device");
  link.channelName = entry.at("channel");
  const Json& raw = entry.at("raw");
  link.isRaw = !raw.is_null();
  if (!link.isRaw) return link;
  link.ip = raw.at("ip");
  link.value2 = raw.at("value2");
  link.value3 = raw.at("value3");
  link.value4 = raw.at("value4");
  link.value5 = raw.at("value5");
  link.value6 = raw.at("value6");
  link.encoding = state_document::NumberOf(kEncodings, raw.at("encoding"));
  link.sip = raw.at("sip");
  link.hasSessionId = !raw.at("session_id").is_null();
  if (link.hasSessionId) link.sessionId = raw.at("session_id");
  return link;
}

Json Achievable(const Json& entry) {
  DantegRPC::ChannelLink link = LinkFromJson(entry);
  const bool is_stream = link.isRaw && !link.ip.empty();
  const bool is_names = !link.isRaw && !link.deviceName.empty() && !link.channelName.empty();
  if (!is_stream && !is_names) return ToJson(Unsubscribed(link.rxChannelId));
  if (link.encoding != 1) link.encoding = 0;  // L24: the library sends no other
  return ToJson(link);
}

std::string SourceText(const Json& entry) {
  if (!entry["raw"].is_null()) return "stream " + entry["raw"]["ip"].get<std::string>();
  const std::string channel = entry["channel"];
  const std::string device = entry["device"];
  return channel.empty() && device.empty() ? "" : channel + " @ " + device;
}

}  // namespace tool
