// Reads and changes the Dante audio-network module: identity, sample rate,
// latency, flags, channels, and where each receive channel takes its audio from.
//
// Every function but Reboot asks the Dante API daemon, at the endpoint that the
// environment variable grpc_dapi_url names (default "localhost:50008").
//
// Lifetime: nothing to create or to destroy. The first call builds a connection
//   that lasts until the process exits.
// Threads: every function may be called from several threads at once. Join the
//   threads that call before the process exits.
// Blocking: a function blocks while its calls last. An absent or dying daemon
//   ends a call in milliseconds and a frozen one when the connection's
//   keepalive notices, but there is no deadline: a daemon that accepts a call
//   and never answers it holds the caller.
// Results: true means done. On false the outputs are as they were, unless said
//   otherwise, and one line beginning "libNetworkgRPC: " has been written to
//   standard error, unless a function is said to fail silently. A daemon that
//   cannot be reached, one that answers with an error and one that refuses are
//   not told apart.
// Lists: a function that fills a vector appends to it and never clears it.
// Exceptions: no std::exception leaves a function; a caught one, such as
//   std::bad_alloc, prints one line and gives false.
// Values: texts must be UTF-8; sample rates and latencies are in the daemon's
//   unit. Nothing is validated, scaled or rewritten on this side. The daemon's
//   numbers are unsigned and `int` here: the 32 bits are carried over as they
//   are in both directions.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class __attribute__((visibility("default"))) DantegRPC {
 public:
  DantegRPC() = delete;

  /// One transmit or receive channel.
  struct Channel {
    /// Channel number, as the daemon numbers it.
    std::int32_t id = 0;
    /// Current label.
    std::string name;
  };

  /// What one receive channel is subscribed to: a device's channel by names, or
  /// a stream by its raw parameters.
  struct ChannelLink {
    /// Number of the receive channel.
    std::int32_t rxChannelId = 0;
    /// Transmit channel subscribed to, empty when there is none.
    std::string channelName;
    /// Transmitting device subscribed to, empty when there is none.
    std::string deviceName;
    /// True when the subscription is given by the raw parameters below.
    bool isRaw = false;
    /// An address of the stream, as text.
    std::string ip;
    /// Parameters of the stream, passed through unchanged.
    std::uint32_t value2 = 0;
    std::uint32_t value3 = 0;
    std::uint32_t value4 = 0;
    std::uint32_t value5 = 0;
    std::uint32_t value6 = 0;
    /// Sample encoding: 0 is 24 bit (L24), 1 is 16 bit (L16). Read as the
    /// daemon sends it; every number but 1 is sent as 0.
    std::int32_t encoding = 0;
    /// A second address of the stream, as text.
    std::string sip;
    /// Whether the stream has a session identifier.
    bool hasSessionId = false;
    /// The identifier; 0 and not sent when hasSessionId is false.
    std::uint64_t sessionId = 0;
  };

  // --- Identity -------------------------------------------------------------
  //
  // The five readers fail silently: they print nothing for a failed call.

  /// Sets `name` to the device name. RPC: GetName. Silent on failure.
  static bool GetName(std::string& name);

  /// Sets the device name, also to an empty one.
  /// RPC: SetName. Prints a line when the daemon fails or refuses.
  static bool SetName(const std::string& name);

  /// Sets `version` to the firmware's version text. RPC: GetFirmwareVersion.
  /// Silent on failure.
  static bool GetFirmwareVersion(std::string& version);

  /// Sets `version` to the software's version text. RPC: GetSoftwareVersion.
  /// Silent on failure.
  static bool GetSoftwareVersion(std::string& version);

  /// Sets `name` to the model's name. RPC: GetModelName. Silent on failure.
  static bool GetModelName(std::string& name);

  /// Sets `version` to the model's version text. RPC: GetModelVersion. Silent
  /// on failure.
  static bool GetModelVersion(std::string& version);

  // --- Audio settings -------------------------------------------------------

  /// Appends the sample rates that the module supports, in the daemon's order;
  /// all or, on failure, none.
  /// RPC: GetAvailableSampleRates. Prints a line on failure.
  static bool GetAvailableSampleRates(std::vector<int>& rates);

  /// Sets `rate` to the sample rate. RPC: GetSampleRate. Prints a line on failure.
  static bool GetSampleRate(int& rate);

  /// Sets the sample rate; whether it is an available one is not checked here.
  /// RPC: SetSampleRate. Prints a line when the daemon fails or refuses.
  static bool SetSampleRate(int rate);

  /// Sets `latency` to the latency. RPC: GetLatency. Prints a line on failure.
  static bool GetLatency(int& latency);

  /// Sets the latency.
  /// RPC: SetLatency. Prints a line when the daemon fails or refuses.
  static bool SetLatency(int latency);

  /// Tells whether the module can do AES67.
  /// RPC: GetIsAES67Available. Prints a line on failure.
  static bool GetAES67Available(bool& available);

  /// Tells whether AES67 is on. RPC: GetAES67Status. Prints a line on failure.
  static bool GetAES67Status(bool& enabled);

  /// Turns AES67 on or off.
  /// RPC: SetAES67Status. Prints a line when the daemon fails or refuses.
  static bool SetAES67(bool enabled);

  /// Tells whether transmission is disabled. On failure `disabled` becomes false.
  /// RPC: GetDisableTxStatus. Prints a line on failure.
  static bool GetDisableTx(bool& disabled);

  /// Disables or enables transmission.
  /// RPC: SetDisableTxStatus. Prints a line when the daemon fails or refuses.
  static bool SetDisableTx(bool disabled);

  /// Tells whether the module is a PTP slave only. On failure `slave_only`
  /// becomes false.
  /// RPC: GetPtpSlaveOnlyStatus. Prints a line on failure.
  static bool GetPtpSlaveOnly(bool& slave_only);

  /// Makes the module a PTP slave only, or lets it become master.
  /// RPC: SetPtpSlaveOnlyStatus. Prints a line when the daemon fails or refuses.
  static bool SetPtpSlaveOnly(bool slave_only);

  /// Restarts the Dante side. This asks the network-manager daemon, at the
  /// endpoint in network_manager_url, to reload its network configuration.
  /// RPC: ReloadNetworkConfig. Prints a line when the daemon fails or refuses.
  static bool Reboot();

  // --- Channels -------------------------------------------------------------

  /// Appends the transmit channels. RPC: GetTxChannels. Prints a line on failure.
  static bool GetTxChannels(std::vector<Channel>& channels);

  /// Appends the receive channels. RPC: GetRxChannels. Prints a line on failure.
  static bool GetRxChannels(std::vector<Channel>& channels);

  /// Counts the transmit and the receive channels. Both are always asked for; on
  /// false the count that could be had is set and the other is as it was.
  /// RPCs: GetTxChannels, GetRxChannels. Prints a line for each that fails.
  static bool GetChannelsNum(int& tx, int& rx);

  /// Gives the transmit channel `channel.id` the label `channel.name`. False
  /// without a call, after printing a line, when the label is empty.
  /// RPC: SetTxChannelName. Prints a line when the daemon fails or refuses.
  static bool SetTxChannelName(const Channel& channel);

  // --- Routing --------------------------------------------------------------

  /// Appends what each receive channel is subscribed to, one record per channel
  /// in the order of the list, also for one without a subscription. Not atomic.
  /// On false the records of the channels before the failing one are appended.
  /// RPCs: GetRxChannels, then GetRxChannelLink for each. Prints a line on failure.
  static bool GetTapping(std::vector<ChannelLink>& links);

  /// Subscribes one receive channel: by the raw parameters when isRaw is true
  /// and ip is not empty, by the two names when isRaw is false and both are
  /// given. In every other case the channel's subscription is removed.
  /// RPC: SetRxChannelLink. Prints a line when the daemon fails or refuses.
  static bool SetTapping(const ChannelLink& link);
};
