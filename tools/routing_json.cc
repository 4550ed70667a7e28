#include "tools/routing_json.h"

namespace tool {
namespace {

constexpr std::int32_t kL16 = 1;

Json EncodingToJson(std::int32_t encoding) {
  if (encoding == 0) return "L24";
  if (encoding == kL16) return "L16";
  return encoding;
}

std::int32_t EncodingFromJson(const Json& encoding) {
  if (encoding.is_number()) return encoding.get<std::int32_t>();
  return encoding == "L16" ? kL16 : 0;
}

}  // namespace

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
                  {"encoding", EncodingToJson(link.encoding)},
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
  link.deviceName = entry.value("device", "");
  link.channelName = entry.value("channel", "");
  const Json raw = entry.value("raw", Json());
  if (raw.is_null()) return link;
  link.isRaw = true;
  link.ip = raw.value("ip", "");
  link.value2 = raw.value("value2", 0U);
  link.value3 = raw.value("value3", 0U);
  link.value4 = raw.value("value4", 0U);
  link.value5 = raw.value("value5", 0U);
  link.value6 = raw.value("value6", 0U);
  link.encoding = EncodingFromJson(raw.value("encoding", Json("L24")));
  link.sip = raw.value("sip", "");
  const Json session = raw.value("session_id", Json());
  link.hasSessionId = !session.is_null();
  if (link.hasSessionId) link.sessionId = session.get<std::uint64_t>();
  return link;
}

Json Achievable(const Json& entry) {
  DantegRPC::ChannelLink link = LinkFromJson(entry);
  const bool is_stream = link.isRaw && !link.ip.empty();
  const bool is_names = !link.isRaw && !link.deviceName.empty() && !link.channelName.empty();
  if (!is_stream && !is_names) return ToJson(Unsubscribed(link.rxChannelId));
  if (link.encoding != kL16) link.encoding = 0;
  return ToJson(link);
}

std::string SourceText(const Json& entry) {
  if (!entry["raw"].is_null()) return "stream " + entry["raw"]["ip"].get<std::string>();
  const std::string channel = entry["channel"];
  const std::string device = entry["device"];
  return channel.empty() && device.empty() ? "" : channel + " @ " + device;
}

}  // namespace tool
