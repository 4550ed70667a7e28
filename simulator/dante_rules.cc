#include "simulator/dante_rules.h"

#include <algorithm>

#include "simulator/find_by_id.h"

namespace simulator {
namespace {

constexpr std::int32_t kLastEncoding = 1;

bool IsComplete(const RawStream& raw) {
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
  Channel* const channel = FindById(channels, id);
  if (channel == nullptr || name.empty()) return false;
  channel->name = name;
  return true;
}

bool SetLink(Dante& dante, std::int32_t rx_channel, const Link& link) {
  if (FindById(dante.rx, rx_channel) == nullptr) return false;
  const bool is_stream = link.raw.has_value();
  const bool is_accepted =
      is_stream ? IsComplete(*link.raw) : link.device_name.empty() == link.channel_name.empty();
  if (!is_accepted) return false;
  if (!is_stream && link.device_name.empty()) {
    dante.links.erase(rx_channel);
  } else {
    dante.links[rx_channel] = link;
  }
  return true;
}

}  // namespace simulator
