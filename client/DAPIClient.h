/// @file
/// Wire messages and call status; each method makes one RPC. Needs the headers of gRPC and
/// protobuf-lite.
#pragma once

#include <grpcpp/support/status.h>

#include <memory>

// The generated classes are exported by this library; a program that hides its own
// symbols must not hide them.
#pragma GCC visibility push(default)
#include "ostrevan/grpcdapi.grpc.pb.h"
#pragma GCC visibility pop

/// The process-wide client of the Dante API daemon's gRPC service, for code that needs the wire
/// messages and the call status. Most applications use DantegRPC.h.
///
/// @code
/// ostrevan::grpcdapi::Success reply;
/// const grpc::Status changed = DAPIClient::GetInstance().SetName(request, &reply);
/// const bool done = changed.ok() && reply.success();  // both: a rejection has the status OK
/// @endcode
///
/// @par Lifetime
/// There is one instance per process, created by the first call of GetInstance() and destroyed at
/// process exit. Its endpoint is in the environment variable grpc_dapi_url (default
/// "localhost:50008"), which is read when the instance is created.
///
/// @par Threads
/// All methods are thread-safe. Join the threads that call them before the process exits.
///
/// @par Blocking
/// Each method makes exactly one RPC, the one that has its name. RPCs have no deadline:
/// - If the daemon is absent or dies, an RPC fails within milliseconds.
/// - If the daemon freezes (stops answering keepalive pings) before an RPC or within its first
///   20 s, the RPC fails about 20 s later. A later freeze is not detected.
/// - If the daemon keeps running but never replies, the RPC lasts until the daemon ends.
///
/// @par Results
/// A method returns the gRPC status unchanged. Nothing is printed, retried or translated. Unless
/// the status is OK, the reply may be partly filled and must not be used. std::bad_alloc passes to
/// the caller.
///
/// Note that the wire message ostrevan::grpcdapi::Status holds an on/off state; grpc::Status is the
/// call status.
class __attribute__((visibility("default"))) DAPIClient {
 public:
  /// Returns the only instance, creating it on first use. Concurrent first callers wait until it
  /// has been created. Thread-safe. Makes no RPC.
  /// @return The instance, valid until the process exits.
  /// @throws std::bad_alloc There is no memory to create it; the next call tries again.
  static DAPIClient& GetInstance();

  /// There is one instance per process: it cannot be copied.
  DAPIClient(const DAPIClient&) = delete;
  /// There is one instance per process: it cannot be assigned.
  DAPIClient& operator=(const DAPIClient&) = delete;

  /// Reads the device name.
  ///
  /// RPC: GetName. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The name.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetName(ostrevan::grpcdapi::Name* reply);

  /// Sets the device name.
  ///
  /// RPC: SetName. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  The name.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetName(const ostrevan::grpcdapi::Name& request, ostrevan::grpcdapi::Success* reply);

  /// Lists the transmit channels.
  ///
  /// RPC: GetTxChannels. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  Id, label and factory label of each, in the daemon's order.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetTxChannels(ostrevan::grpcdapi::Channels* reply);

  /// Lists the receive channels.
  ///
  /// RPC: GetRxChannels. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  Id, label and factory label of each, in the daemon's order.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetRxChannels(ostrevan::grpcdapi::Channels* reply);

  /// Sets the label of one transmit channel.
  ///
  /// RPC: SetTxChannelName. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  The channel's id and its new label.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetTxChannelName(const ostrevan::grpcdapi::Channel& request,
                                ostrevan::grpcdapi::Success* reply);

  /// Reads the subscription of one receive channel.
  ///
  /// RPC: GetRxChannelLink. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  The channel, exactly as GetRxChannels returned it.
  /// @param[out] reply  What the channel is subscribed to; no names and no raw parameters if
  ///   nothing.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetRxChannelLink(const ostrevan::grpcdapi::Channel& request,
                                ostrevan::grpcdapi::LinkInfo* reply);

  /// Changes the subscription of one receive channel.
  ///
  /// RPC: SetRxChannelLink. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  The channel's id and what to subscribe to. The id alone removes the
  ///   subscription.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetRxChannelLink(const ostrevan::grpcdapi::LinkInfo& request,
                                ostrevan::grpcdapi::Success* reply);

  /// Reads the latency.
  ///
  /// RPC: GetLatency. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The latency, in the daemon's unit.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetLatency(ostrevan::grpcdapi::Latency* reply);

  /// Sets the latency.
  ///
  /// RPC: SetLatency. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  The latency, in the daemon's unit.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetLatency(const ostrevan::grpcdapi::Latency& request,
                          ostrevan::grpcdapi::Success* reply);

  /// Reads the software version.
  ///
  /// RPC: GetSoftwareVersion. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The version as the daemon writes it.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetSoftwareVersion(ostrevan::grpcdapi::Version* reply);

  /// Reads the firmware version.
  ///
  /// RPC: GetFirmwareVersion. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The version as the daemon writes it.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetFirmwareVersion(ostrevan::grpcdapi::Version* reply);

  /// Lists the sample rates that the module supports.
  ///
  /// RPC: GetAvailableSampleRates. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The rates, in the daemon's unit and order.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetAvailableSampleRates(ostrevan::grpcdapi::AvailableSampleRates* reply);

  /// Reads the sample rate.
  ///
  /// RPC: GetSampleRate. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The rate, in the daemon's unit.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetSampleRate(ostrevan::grpcdapi::SampleRate* reply);

  /// Sets the sample rate.
  ///
  /// RPC: SetSampleRate. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  The rate, in the daemon's unit.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetSampleRate(const ostrevan::grpcdapi::SampleRate& request,
                             ostrevan::grpcdapi::Success* reply);

  /// Reads whether the module supports AES67.
  ///
  /// RPC: GetIsAES67Available. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  `reply->status()` is true if it does.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetIsAES67Available(ostrevan::grpcdapi::Status* reply);

  /// Reads whether AES67 is on.
  ///
  /// RPC: GetAES67Status. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  `reply->status()` is true if it is on.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetAES67Status(ostrevan::grpcdapi::Status* reply);

  /// Turns AES67 on or off.
  ///
  /// RPC: SetAES67Status. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  True: on.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetAES67Status(const ostrevan::grpcdapi::Status& request,
                              ostrevan::grpcdapi::Success* reply);

  /// Reads the manufacturer name. No facade function returns it.
  ///
  /// RPC: GetManufacturerName. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The name.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetManufacturerName(ostrevan::grpcdapi::Name* reply);

  /// Reads the model name.
  ///
  /// RPC: GetModelName. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The name.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetModelName(ostrevan::grpcdapi::Name* reply);

  /// Reads the model version.
  ///
  /// RPC: GetModelVersion. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  The version as the daemon writes it.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetModelVersion(ostrevan::grpcdapi::Version* reply);

  /// Reads whether transmission is disabled.
  ///
  /// RPC: GetDisableTxStatus. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  `reply->status()` is true if nothing is transmitted.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetDisableTxStatus(ostrevan::grpcdapi::Status* reply);

  /// Disables or enables transmission.
  ///
  /// RPC: SetDisableTxStatus. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  True: nothing is transmitted.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetDisableTxStatus(const ostrevan::grpcdapi::Status& request,
                                  ostrevan::grpcdapi::Success* reply);

  /// Reads whether the module is PTP slave only.
  ///
  /// RPC: GetPtpSlaveOnlyStatus. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[out] reply  `reply->status()` is true if it is slave only.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status GetPtpSlaveOnlyStatus(ostrevan::grpcdapi::Status* reply);

  /// Makes the module PTP slave only, or allows it to become master.
  ///
  /// RPC: SetPtpSlaveOnlyStatus. Blocks without a deadline, thread-safe (see DAPIClient).
  /// @param[in] request  True: slave only.
  /// @param[out] reply  `reply->success()` is true if the change was applied.
  /// @return The call status. Unless it is OK, `reply` must not be used.
  grpc::Status SetPtpSlaveOnlyStatus(const ostrevan::grpcdapi::Status& request,
                                     ostrevan::grpcdapi::Success* reply);

 private:
  DAPIClient();
  ~DAPIClient();

  std::unique_ptr<ostrevan::grpcdapi::DAPI::Stub> stub;
};
