// One simulated device as plain data: what its two daemons know. Nothing here
// decides or applies anything; see network_rules.h and dante_rules.h.
//
// Fields that only carry a value for the daemon's users (flag7, value2 and the
// like) keep the names that they have on the wire.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

// --- Host networking -----------------------------------------------------------

/// How an interface gets its address. The numbers are the wire's; a request can
/// carry any other.
enum class Addressing : std::int32_t {
  kDynamic = 0,
  kStatic = 1,
  kDhcpOnly = 2,
  kLinkLocalOnly = 3
};

/// The numbers are the wire's.
enum class LinkSpeed : std::int32_t { kNone = 0, k10Mbs = 1, k100Mbs = 2, k1000Mbs = 3 };

/// An IPv4 address and what comes with it, as dotted strings. All empty: none.
struct Addresses {
  std::string ip;
  std::string netmask;
  std::string gateway;
  std::vector<std::string> dns;
};

struct InterfaceConfig {
  Addressing mode = Addressing::kDynamic;
  Addresses addresses;  // in effect when mode is kStatic
  bool flag7 = false;
  bool flag8 = false;
};

/// A wired interface.
struct Interface {
  std::int32_t id = 0;
  std::string name;
  std::string mac;
  LinkSpeed speed = LinkSpeed::kNone;
  bool flag6 = false;
  std::optional<Addresses> lease;  // what a DHCP server on this network hands out
  Addresses link_local;            // what the interface gives itself
  InterfaceConfig stored;
  Addresses live;  // what is in use since the last reload
};

struct SwitchMode {
  std::int32_t id = 0;
  std::string name;
};

struct Network {
  std::vector<Interface> interfaces;
  std::vector<SwitchMode> switch_modes;
  std::int32_t stored_switch_mode = 0;  // SwitchMode::id
  std::int32_t live_switch_mode = 0;    // SwitchMode::id, since the last reload
  std::string hostname;
  std::vector<std::string> stored_ntp;
  std::vector<std::string> live_ntp;  // since the last NTP reload
};

// --- Dante module --------------------------------------------------------------

struct Channel {
  std::int32_t id = 0;
  std::string name;
  std::string default_name;
};

/// A stream by address rather than by names.
struct RawStream {
  std::string ip;
  std::array<std::uint32_t, 5> values{};  // value2 to value6
  std::int32_t encoding = 0;              // 0: 24 bit, 1: 16 bit
  std::string sip;
  std::optional<std::uint64_t> session_id;
};

/// What one receive channel is subscribed to.
struct Link {
  std::string device_name;
  std::string channel_name;
  std::optional<RawStream> raw;
  bool flag5 = false;
};

/// The numbers are the wire's.
enum class Clock : std::int32_t { kNone = 0, kPassive = 1, kUndisciplined = 2, kDisciplined = 3 };

struct Ptp {
  std::uint32_t config_value1 = 0;
  std::uint32_t config_value2 = 0;
  std::int32_t status_value1 = 0;
  Clock clock = Clock::kNone;
  bool slave_only = false;
};

struct Dante {
  std::string name;
  std::string manufacturer;
  std::string model_name;
  std::string model_version;
  std::string software_version;
  std::string firmware_version;
  std::vector<std::uint32_t> sample_rates;  // Hz
  std::uint32_t sample_rate = 0;            // Hz, one of sample_rates
  std::uint32_t latency = 0;                // microseconds
  std::uint32_t min_latency = 0;            // microseconds
  bool aes67_available = false;
  bool aes67 = false;
  bool tx_disabled = false;
  Ptp ptp;
  std::vector<Channel> tx;
  std::vector<Channel> rx;
  std::map<std::int32_t, Link> links;  // by Channel::id of rx; absent: not subscribed
};

// --- The device ----------------------------------------------------------------

struct Device {
  Network network;
  Network factory_network;  // what a factory reset brings back
  Dante dante;
};

}  // namespace simulator
