#include "simulator/audio_network.h"

#include <algorithm>

namespace simulator {

void AudioNetwork::Join(const Device& device) {
  const std::lock_guard<std::mutex> lock(mutex);
  devices.push_back(&device);
}

void AudioNetwork::Leave(const Device& device) {
  const std::lock_guard<std::mutex> lock(mutex);
  devices.erase(std::remove(devices.begin(), devices.end(), &device), devices.end());
}

std::unique_lock<std::mutex> AudioNetwork::Lock(Device& device) {
  std::unique_lock<std::mutex> lock(mutex);
  if (devices.size() > 1)
    for (auto& [channel, link] : device.dante.links)
      if (!link.raw.has_value()) link.flag5 = Receives(device, link);
  return lock;
}

bool AudioNetwork::Receives(const Device& device, const Link& link) const {
  return std::any_of(devices.begin(), devices.end(), [&](const Device* other) {
    const Dante& from = other->dante;
    return from.name == link.device_name && !from.tx_disabled &&
           from.sample_rate == device.dante.sample_rate &&
           std::any_of(from.tx.begin(), from.tx.end(),
                       [&](const Channel& channel) { return channel.name == link.channel_name; });
  });
}

}  // namespace simulator
