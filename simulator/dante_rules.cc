#include "simulator/dante_rules.h"

#include <algorithm>

namespace simulator {
namespace {

constexpr std::int32_t kLastEncoding = 1;

template <class Channels>
auto Find(Channels& channels, std::int32_t id) {
  return std::find_if(channels.begin(), channels.end(),
                      [id](const Channel& channel) { return channel.id == id; });
}

bool IsStream(const RawStream& raw) {
  return !raw.ip.empty() && raw.encoding >= 0 && raw.encoding <= kLastEncoding;
}

}  // namespace

bool SetSampleRate(Dante& dante, std::uint32_t rate) {
  const auto& rates = dante.sample_rates;
  if (std::find(rates.begin(), rates.end(), rate) == rates.end()) return false;
  dante.sample_rate = rate;
  return true;
}

bool SetLatency(Dante& dante, std::uint32_t latency) {
  if (latency < dante.min_latency) return false;
  dante.latency = latency;
  return true;
}

bool SetAes67(Dante& dante, bool enabled) {
  if (enabled && !dante.aes67_available) return false;
  dante.aes67 = enabled;
  return true;
}

bool SetChannelName(std::vector<Channel>& channels, std::int32_t id, const std::string& name) {
  const auto channel = Find(channels, id);
  if (channel == channels.end() || name.empty()) return false;
  channel->name = name;
  return true;
}

bool HasRxChannel(const Dante& dante, std::int32_t id) {
  return Find(dante.rx, id) != dante.rx.end();
}

bool SetLink(Dante& dante, std::int32_t rx_channel, const Link& link) {
  if (!HasRxChannel(dante, rx_channel)) return false;
  if (link.raw.has_value()) {
    if (!IsStream(*link.raw)) return false;
    dante.links[rx_channel] = link;
    return true;
  }
  if (link.device_name.empty() != link.channel_name.empty()) return false;
  if (link.device_name.empty()) {
    dante.links.erase(rx_channel);
  } else {
    dante.links[rx_channel] = link;
  }
  return true;
}

}  // namespace simulator
