/// @file
/// The Dante module in plain records; needs nothing but the standard library.

/// @class DantegRPC
/// Reads and changes the Dante audio-network module: identity, sample rate,
/// latency, flags, channels, and where each receive channel takes its audio from.
///
/// Every function but Reboot asks the Dante API daemon, at the endpoint that the
/// environment variable grpc_dapi_url names (default "localhost:50008").
///
/// @par Lifetime
/// Nothing to create or to destroy. The first call builds a connection that
/// lasts until the process exits.
///
/// @par Threads
/// Every function may be called from several threads at once. Join the threads
/// that call before the process exits.
///
/// @par Blocking
/// A function makes the RPCs that its description names, one after the other,
/// and blocks while they last. An RPC ends in milliseconds when the daemon is
/// absent or dies, and 20 s after the daemon has frozen, when the connection's
/// keepalive notices; later than 20 s into an RPC it no longer does. There is no
/// deadline: a daemon that accepts a call and never answers it holds the caller
/// until the daemon ends.
///
/// @par Results
/// True means done. On false the outputs are as they were, unless said
/// otherwise, and one line beginning "libNetworkgRPC: " has been written to
/// standard error, unless a function is said to fail silently. A daemon that
/// cannot be reached, one that answers with an error and one that refuses are
/// not told apart.
///
/// @par Lists
/// A function that fills a vector appends to it and never clears it.
///
/// @par Exceptions
/// No std::exception leaves a function; a caught one, such as std::bad_alloc,
/// prints one line and gives false.
///
/// @par Values
/// Texts must be UTF-8. Sample rates and latencies are in the daemon's unit.
/// Nothing is validated, scaled or rewritten on this side. The daemon's numbers
/// are unsigned and `int` here: the 32 bits are carried over as they are in both
/// directions.
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
    /// Second parameter of the stream, passed through unchanged like the next four.
    std::uint32_t value2 = 0;
    /// Third parameter of the stream.
    std::uint32_t value3 = 0;
    /// Fourth parameter of the stream.
    std::uint32_t value4 = 0;
    /// Fifth parameter of the stream.
    std::uint32_t value5 = 0;
    /// Sixth parameter of the stream.
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

  /// @name Identity
  /// The five readers fail silently: they print nothing for a failed call.
  /// Threads, blocking and results: as for all functions of DantegRPC.
  /// @{

  /// Reads the device name.
  /// RPC: GetName.
  /// @param[out] name  the name; unchanged on false
  /// @return false, silently, when the call fails
  static bool GetName(std::string& name);

  /// Sets the device name.
  /// RPC: SetName.
  /// @param[in] name  sent exactly as given, also when it is empty
  /// @return false with a line when the daemon fails or refuses
  static bool SetName(const std::string& name);

  /// Reads the firmware's version.
  /// RPC: GetFirmwareVersion.
  /// @param[out] version  the text as the daemon forms it; unchanged on false
  /// @return false, silently, when the call fails
  static bool GetFirmwareVersion(std::string& version);

  /// Reads the software's version.
  /// RPC: GetSoftwareVersion.
  /// @param[out] version  the text as the daemon forms it; unchanged on false
  /// @return false, silently, when the call fails
  static bool GetSoftwareVersion(std::string& version);

  /// Reads the model's name.
  /// RPC: GetModelName.
  /// @param[out] name  the name; unchanged on false
  /// @return false, silently, when the call fails
  static bool GetModelName(std::string& name);

  /// Reads the model's version.
  /// RPC: GetModelVersion.
  /// @param[out] version  the text as the daemon forms it; unchanged on false
  /// @return false, silently, when the call fails
  static bool GetModelVersion(std::string& version);

  /// @}

  /// @name Audio settings
  /// Threads, blocking and results: as for all functions of DantegRPC.
  /// @{

  /// Appends the sample rates that the module supports, in the daemon's order.
  /// RPC: GetAvailableSampleRates.
  /// @param[in,out] rates  takes one more entry for each rate; unchanged on false
  /// @return false with a line when the call fails
  static bool GetAvailableSampleRates(std::vector<int>& rates);

  /// Reads the sample rate.
  /// RPC: GetSampleRate.
  /// @param[out] rate  in the daemon's unit; unchanged on false
  /// @return false with a line when the call fails
  static bool GetSampleRate(int& rate);

  /// Sets the sample rate.
  /// RPC: SetSampleRate.
  /// @param[in] rate  in the daemon's unit; whether it is an available one is not
  ///   checked here
  /// @return false with a line when the daemon fails or refuses
  static bool SetSampleRate(int rate);

  /// Reads the latency.
  /// RPC: GetLatency.
  /// @param[out] latency  in the daemon's unit; unchanged on false
  /// @return false with a line when the call fails
  static bool GetLatency(int& latency);

  /// Sets the latency.
  /// RPC: SetLatency.
  /// @param[in] latency  in the daemon's unit; the range is not checked here
  /// @return false with a line when the daemon fails or refuses
  static bool SetLatency(int latency);

  /// Tells whether the module can do AES67.
  /// RPC: GetIsAES67Available.
  /// @param[out] available  whether it can; unchanged on false
  /// @return false with a line when the call fails
  static bool GetAES67Available(bool& available);

  /// Tells whether AES67 is on.
  /// RPC: GetAES67Status.
  /// @param[out] enabled  whether it is; unchanged on false
  /// @return false with a line when the call fails
  static bool GetAES67Status(bool& enabled);

  /// Turns AES67 on or off.
  /// RPC: SetAES67Status.
  /// @param[in] enabled  true: on
  /// @return false with a line when the daemon fails or refuses
  static bool SetAES67(bool enabled);

  /// Tells whether transmission is disabled.
  /// RPC: GetDisableTxStatus.
  /// @param[out] disabled  whether it is; false on failure
  /// @return false with a line when the call fails
  static bool GetDisableTx(bool& disabled);

  /// Disables or enables transmission.
  /// RPC: SetDisableTxStatus.
  /// @param[in] disabled  true: nothing is transmitted
  /// @return false with a line when the daemon fails or refuses
  static bool SetDisableTx(bool disabled);

  /// Tells whether the module is a PTP slave only.
  /// RPC: GetPtpSlaveOnlyStatus.
  /// @param[out] slave_only  whether it is; false on failure
  /// @return false with a line when the call fails
  static bool GetPtpSlaveOnly(bool& slave_only);

  /// Makes the module a PTP slave only, or lets it become master.
  /// RPC: SetPtpSlaveOnlyStatus.
  /// @param[in] slave_only  true: slave only
  /// @return false with a line when the daemon fails or refuses
  static bool SetPtpSlaveOnly(bool slave_only);

  /// Restarts the Dante side. This asks the network-manager daemon, at the
  /// endpoint in network_manager_url, to reload its network configuration; when
  /// nothing has asked that daemon before, it is first asked for the role
  /// interfaces as NetworkgRPC tells.
  /// RPC: ReloadNetworkConfig.
  /// @return false with a line when the daemon fails or refuses
  static bool Reboot();

  /// @}

  /// @name Channels
  /// Threads, blocking and results: as for all functions of DantegRPC.
  /// @{

  /// Appends the transmit channels, in the daemon's order.
  /// RPC: GetTxChannels.
  /// @param[in,out] channels  takes one more record for each channel; unchanged on false
  /// @return false with a line when the call fails
  static bool GetTxChannels(std::vector<Channel>& channels);

  /// Appends the receive channels, in the daemon's order.
  /// RPC: GetRxChannels.
  /// @param[in,out] channels  takes one more record for each channel; unchanged on false
  /// @return false with a line when the call fails
  static bool GetRxChannels(std::vector<Channel>& channels);

  /// Counts the transmit and the receive channels. Both are always asked for.
  /// RPCs: GetTxChannels, GetRxChannels.
  /// @param[out] tx  number of transmit channels; unchanged when they cannot be had
  /// @param[out] rx  number of receive channels; unchanged when they cannot be had
  /// @return false when either cannot be had, with a line for each
  static bool GetChannelsNum(int& tx, int& rx);

  /// Renames one transmit channel.
  /// RPC: SetTxChannelName.
  /// @param[in] channel  its number in `id`; its new label, not empty, in `name`
  /// @return false with a line when the daemon fails or refuses, with another and
  ///   without an RPC when the label is empty
  static bool SetTxChannelName(const Channel& channel);

  /// @}

  /// @name Routing
  /// Threads, blocking and results: as for all functions of DantegRPC.
  /// @{

  /// Appends what each receive channel is subscribed to, one record per channel
  /// in the order of the list, also for one without a subscription. Not atomic:
  /// the list may change between the RPCs.
  /// RPCs: GetRxChannels, then GetRxChannelLink for each channel.
  /// @param[in,out] links  takes one more record for each channel; on false only
  ///   for the channels before the failing one
  /// @return false with a line when a call fails
  static bool GetTapping(std::vector<ChannelLink>& links);

  /// Subscribes one receive channel: by the raw parameters when isRaw is true and
  /// ip is not empty, by the two names when isRaw is false and both are given. In
  /// every other case the channel's subscription is removed.
  /// RPC: SetRxChannelLink.
  /// @param[in] link  the channel's number in `rxChannelId`, and its source
  /// @return false with a line when the daemon fails or refuses
  static bool SetTapping(const ChannelLink& link);

  /// @}
};
