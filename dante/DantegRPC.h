/// @file
/// The Dante module in plain records. Includes nothing but the standard library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Reads and changes the Dante audio-network module: identity, sample rate, latency, flags,
/// channels, and the subscription of each receive channel.
///
/// Every function except Reboot calls the Dante API daemon, at the endpoint in the environment
/// variable grpc_dapi_url (default "localhost:50008").
///
/// @code
/// const bool confirmed = DantegRPC::SetSampleRate(rate);
/// int now = 0;
/// if (!DantegRPC::GetSampleRate(now)) return false;
/// std::cout << "the sample rate is " << now << std::endl;
/// return confirmed && now == rate;
/// @endcode
///
/// @par Lifetime
/// Nothing has to be created or destroyed. The first call creates a connection that lasts until the
/// process exits.
///
/// @par Threads
/// All functions are thread-safe. Join the threads that call them before the process exits.
///
/// @par Blocking
/// A function makes the RPCs listed in its comment one after the other and returns when the last
/// has ended. RPCs have no deadline:
/// - If the daemon is absent or dies, an RPC fails within milliseconds.
/// - If the daemon freezes (stops answering keepalive pings) before an RPC or within its first
///   20 s, the RPC fails about 20 s later. A later freeze is not detected.
/// - If the daemon keeps running but never replies, the RPC lasts until the daemon ends.
///
/// @par Results
/// A function returns `true` on success. On failure, unless its comment says otherwise, it returns
/// `false`, leaves its outputs unchanged and prints to standard error one line that starts with
/// `libNetworkgRPC:`. The result does not distinguish an unreachable daemon, an RPC error and a
/// rejected request. After a failed change, read the setting back: the daemon may have applied it.
///
/// @par Lists
/// A function that fills a vector appends to it and never clears it.
///
/// @par Exceptions
/// No std::exception leaves a function. If one is caught, std::bad_alloc for example, the function
/// prints an error line and returns `false`; list records that were appended before stay in the
/// vector. Exceptions of other types pass to the caller.
///
/// @par Values
/// Strings must be UTF-8. Strings and numbers are passed unchanged; only the daemon validates them,
/// and it defines the units of sample rates and latencies. The daemon's numbers are unsigned, here
/// they are `int`: the 32 bits are kept in both directions.
class __attribute__((visibility("default"))) DantegRPC {
 public:
  /// There are no objects of this class: all its functions are static.
  DantegRPC() = delete;

  /// One transmit or receive channel.
  ///
  /// @code
  /// DantegRPC::Channel channel;
  /// channel.id = std::atoi(argv[1]);
  /// channel.name = argv[2];  // UTF-8, not empty
  /// const bool confirmed = DantegRPC::SetTxChannelName(channel);
  /// @endcode
  struct Channel {
    /// Channel id, as the daemon numbers the channels.
    std::int32_t id = 0;
    /// Current channel label.
    std::string name;
  };

  /// What one receive channel is subscribed to: the transmit channel of a device, given by its
  /// names, or a stream, given by its raw parameters.
  ///
  /// @code
  /// DantegRPC::ChannelLink link;
  /// link.rxChannelId = receive;
  /// link.deviceName = device;
  /// link.channelName = channel;
  /// return DantegRPC::SetTapping(link);
  /// @endcode
  struct ChannelLink {
    /// Id of the receive channel.
    std::int32_t rxChannelId = 0;
    /// Label of the transmit channel subscribed to; empty if there is none.
    std::string channelName;
    /// Name of the transmitting device subscribed to; empty if there is none.
    std::string deviceName;
    /// `true` if the raw parameters below define the subscription.
    bool isRaw = false;
    /// Raw parameter: an address of the stream. Not empty in a subscription by raw parameters.
    std::string ip;
    /// Second raw parameter: defined by the daemon, passed unchanged.
    std::uint32_t value2 = 0;
    /// Third raw parameter: defined by the daemon, passed unchanged.
    std::uint32_t value3 = 0;
    /// Fourth raw parameter: defined by the daemon, passed unchanged.
    std::uint32_t value4 = 0;
    /// Fifth raw parameter: defined by the daemon, passed unchanged.
    std::uint32_t value5 = 0;
    /// Sixth raw parameter: defined by the daemon, passed unchanged.
    std::uint32_t value6 = 0;
    /// Raw parameter: sample encoding, 0: 24 bits (L24), 1: 16 bits (L16). GetTapping returns the
    /// daemon's number unchanged; SetTapping sends every value but 1 as 0.
    std::int32_t encoding = 0;
    /// Raw parameter: a second address of the stream.
    std::string sip;
    /// Raw parameter: whether the stream has a session identifier.
    bool hasSessionId = false;
    /// Raw parameter: the session identifier. GetTapping returns 0 and SetTapping does not send it
    /// if `hasSessionId` is `false`.
    std::uint64_t sessionId = 0;
  };

  /// @name Identity
  /// @{

  /// Reads the device name.
  ///
  /// RPC: GetName. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] name  The name. Unchanged on failure.
  /// @return
  ///   - `true`: `name` was set.
  ///   - `false`: the request failed (nothing is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetName(std::string& name);

  /// Sets the device name.
  ///
  /// RPC: SetName. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in] name  Sent unchanged, even if empty.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetName(const std::string& name);

  /// Reads the firmware version.
  ///
  /// RPC: GetFirmwareVersion. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] version  The version, exactly as the daemon sent it. Unchanged on failure.
  /// @return
  ///   - `true`: `version` was set.
  ///   - `false`: the request failed (nothing is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetFirmwareVersion(std::string& version);

  /// Reads the software version.
  ///
  /// RPC: GetSoftwareVersion. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] version  The version, exactly as the daemon sent it. Unchanged on failure.
  /// @return
  ///   - `true`: `version` was set.
  ///   - `false`: the request failed (nothing is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetSoftwareVersion(std::string& version);

  /// Reads the model name.
  ///
  /// RPC: GetModelName. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] name  The name. Unchanged on failure.
  /// @return
  ///   - `true`: `name` was set.
  ///   - `false`: the request failed (nothing is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetModelName(std::string& name);

  /// Reads the model version.
  ///
  /// RPC: GetModelVersion. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] version  The version, exactly as the daemon sent it. Unchanged on failure.
  /// @return
  ///   - `true`: `version` was set.
  ///   - `false`: the request failed (nothing is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetModelVersion(std::string& version);

  /// @}

  /// @name Audio settings
  /// @{

  /// Appends the sample rates that the module supports, in the daemon's order.
  ///
  /// RPC: GetAvailableSampleRates. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in,out] rates  One entry per rate is appended, in the daemon's unit. Unchanged on
  ///   failure.
  /// @return
  ///   - `true`: the rates were appended.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetAvailableSampleRates(std::vector<int>& rates);

  /// Reads the sample rate.
  ///
  /// RPC: GetSampleRate. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] rate  In the daemon's unit. Unchanged on failure.
  /// @return
  ///   - `true`: `rate` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetSampleRate(int& rate);

  /// Sets the sample rate.
  ///
  /// RPC: SetSampleRate. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in] rate  In the daemon's unit. Sent without a check against the supported rates.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetSampleRate(int rate);

  /// Reads the latency.
  ///
  /// RPC: GetLatency. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] latency  In the daemon's unit. Unchanged on failure.
  /// @return
  ///   - `true`: `latency` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetLatency(int& latency);

  /// Sets the latency.
  ///
  /// RPC: SetLatency. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in] latency  In the daemon's unit; the range is not checked.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetLatency(int latency);

  /// Reads whether the module supports AES67.
  ///
  /// RPC: GetIsAES67Available. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] available  `true`: supported. Unchanged on failure.
  /// @return
  ///   - `true`: `available` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetAES67Available(bool& available);

  /// Reads whether AES67 is on.
  ///
  /// RPC: GetAES67Status. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] enabled  `true`: on. Unchanged on failure.
  /// @return
  ///   - `true`: `enabled` was set.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetAES67Status(bool& enabled);

  /// Turns AES67 on or off.
  ///
  /// RPC: SetAES67Status. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in] enabled  `true`: on.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetAES67(bool enabled);

  /// Reads whether transmission is disabled.
  ///
  /// RPC: GetDisableTxStatus. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] disabled  `true`: nothing is transmitted. `false` on failure.
  /// @return
  ///   - `true`: `disabled` was set.
  ///   - `false`: the request failed (`disabled` is set to `false`, an error line is printed).
  ///   - `false`: a std::exception was caught (`disabled` is set to `false`, an error line is
  ///     printed).
  static bool GetDisableTx(bool& disabled);

  /// Disables or enables transmission.
  ///
  /// RPC: SetDisableTxStatus. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in] disabled  `true`: nothing is transmitted.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetDisableTx(bool disabled);

  /// Reads whether the module is PTP slave only.
  ///
  /// RPC: GetPtpSlaveOnlyStatus. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] slave_only  `true`: slave only. `false` on failure.
  /// @return
  ///   - `true`: `slave_only` was set.
  ///   - `false`: the request failed (`slave_only` is set to `false`, an error line is printed).
  ///   - `false`: a std::exception was caught (`slave_only` is set to `false`, an error line is
  ///     printed).
  static bool GetPtpSlaveOnly(bool& slave_only);

  /// Makes the module PTP slave only, or allows it to become master.
  ///
  /// RPC: SetPtpSlaveOnlyStatus. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in] slave_only  `true`: slave only.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetPtpSlaveOnly(bool slave_only);

  /// Restarts the Dante side by asking the network-manager daemon, at the endpoint in
  /// network_manager_url (default "localhost:50007"), to reload its network configuration. If it is
  /// the process's first call to that daemon, GetAvailableInterfaces is called before, as for
  /// NetworkgRPC.
  ///
  /// RPC: ReloadNetworkConfig. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @return
  ///   - `true`: the daemon confirmed the reload.
  ///   - `false`: the daemon rejected the reload (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool Reboot();

  /// @}

  /// @name Channels
  /// @{

  /// Appends the transmit channels, in the daemon's order.
  ///
  /// RPC: GetTxChannels. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in,out] channels  One record per channel is appended. Unchanged on failure, except that
  ///   records appended before a caught exception stay.
  /// @return
  ///   - `true`: the records were appended.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetTxChannels(std::vector<Channel>& channels);

  /// Appends the receive channels, in the daemon's order.
  ///
  /// RPC: GetRxChannels. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in,out] channels  One record per channel is appended. Unchanged on failure, except that
  ///   records appended before a caught exception stay.
  /// @return
  ///   - `true`: the records were appended.
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool GetRxChannels(std::vector<Channel>& channels);

  /// Counts the transmit and the receive channels. The second request is made even if the first
  /// failed.
  ///
  /// RPCs: GetTxChannels, GetRxChannels. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[out] tx  Number of transmit channels. Unchanged if their request failed.
  /// @param[out] rx  Number of receive channels. Unchanged if their request failed.
  /// @return
  ///   - `true`: `tx` and `rx` were set.
  ///   - `false`: one or both requests failed (an error line is printed for each); the count of the
  ///     other is set.
  ///   - `false`: a std::exception was caught (an error line is printed); `tx` may be set already.
  static bool GetChannelsNum(int& tx, int& rx);

  /// Sets the label of one transmit channel.
  ///
  /// RPC: SetTxChannelName. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in] channel  `id`: the channel; `name`: its new label, not empty.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the label is empty (no RPC is made, an error line is printed).
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetTxChannelName(const Channel& channel);

  /// @}

  /// @name Routing
  /// @{

  /// Appends the subscription of every receive channel, in the daemon's order; a channel without a
  /// subscription gets a record with empty names. `isRaw` is `true` if the subscription has raw
  /// parameters with a non-empty `ip`. Not atomic: subscriptions and channels may change between
  /// the RPCs.
  ///
  /// RPCs: GetRxChannels, then GetRxChannelLink for each channel. Blocks without a deadline,
  /// thread-safe (see DantegRPC).
  /// @param[in,out] links  One record per channel is appended. On failure, records of the channels
  ///   before the failed one stay.
  /// @return
  ///   - `true`: the records were appended.
  ///   - `false`: a request failed (an error line is printed). No further channel is requested.
  ///   - `false`: a std::exception was caught (an error line is printed). No further channel is
  ///     requested.
  static bool GetTapping(std::vector<ChannelLink>& links);

  /// Subscribes one receive channel. If `isRaw` is `true` and `ip` is not empty, both names and all
  /// raw parameters are sent. If `isRaw` is `false` and both names are not empty, the names are
  /// sent. In every other case only the channel id is sent, which asks the daemon to remove the
  /// subscription.
  ///
  /// RPC: SetRxChannelLink. Blocks without a deadline, thread-safe (see DantegRPC).
  /// @param[in] link  `rxChannelId`: the channel; the other fields: what to subscribe to.
  /// @return
  ///   - `true`: the daemon confirmed the change.
  ///   - `false`: the daemon rejected it (an error line is printed).
  ///   - `false`: the request failed (an error line is printed).
  ///   - `false`: a std::exception was caught (an error line is printed).
  static bool SetTapping(const ChannelLink& link);

  /// @}
};
