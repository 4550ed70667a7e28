/// @file
/// Wire messages and call status, one method per RPC; needs gRPC and protobuf-lite.

/// @class DAPIClient
/// The process-wide client of the Dante API daemon's gRPC service, for code that
/// wants the wire messages and the full call status. Most applications are better
/// served by DantegRPC.h.
///
/// @par Lifetime
/// One instance per process, built on the first call of GetInstance() and
/// destroyed at process exit. The endpoint comes from the environment variable
/// grpc_dapi_url (default "localhost:50008"), read once, when the instance is
/// built. Building it makes no call.
///
/// @par Threads
/// Every method may be called from several threads at once. Join the threads that
/// call before the process exits.
///
/// @par Blocking
/// Each method makes exactly one blocking unary call without a deadline, on the
/// RPC of its own name. A daemon that is absent or dies ends the call in
/// milliseconds, one that freezes 20 s later, when the connection's keepalive
/// notices; later than 20 s into a call it no longer does. One that accepts the
/// call and never answers holds it until the daemon ends.
///
/// @par Results
/// The gRPC status of the call, unchanged. Nothing is printed, retried or
/// translated. After a status other than OK the reply may be partly filled and is
/// not to be used. The on/off message ostrevan::grpcdapi::Status is not the call
/// status grpc::Status.
#pragma once

#include <grpcpp/support/status.h>

#include <memory>

// The generated classes are part of this library's exported interface, also
// for a program that hides its own symbols.
#pragma GCC visibility push(default)
#include "ostrevan/grpcdapi.grpc.pb.h"
#pragma GCC visibility pop

class __attribute__((visibility("default"))) DAPIClient {
 public:
  /// The one instance of the process, built on first use; concurrent first
  /// callers wait for one of them to build it. Throws what building it throws
  /// (std::bad_alloc); the next call then tries again.
  /// @return the instance, valid until the process exits
  static DAPIClient& GetInstance();

  DAPIClient(const DAPIClient&) = delete;
  DAPIClient& operator=(const DAPIClient&) = delete;

  /// Reads the device name.
  /// @param[out] reply  the name
  /// @return the status of the call
  grpc::Status GetName(ostrevan::grpcdapi::Name* reply);

  /// Sets the device name.
  /// @param[in] request  the name
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetName(const ostrevan::grpcdapi::Name& request, ostrevan::grpcdapi::Success* reply);

  /// Lists the transmit channels.
  /// @param[out] reply  number, label and factory label of each
  /// @return the status of the call
  grpc::Status GetTxChannels(ostrevan::grpcdapi::Channels* reply);

  /// Lists the receive channels.
  /// @param[out] reply  number, label and factory label of each
  /// @return the status of the call
  grpc::Status GetRxChannels(ostrevan::grpcdapi::Channels* reply);

  /// Renames one transmit channel.
  /// @param[in] request  the channel's number and its new label
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetTxChannelName(const ostrevan::grpcdapi::Channel& request,
                                ostrevan::grpcdapi::Success* reply);

  /// Reads the subscription of one receive channel, named by its entry of the list.
  /// @param[in] request  the channel, as the list has it
  /// @param[out] reply  where the channel takes its audio from
  /// @return the status of the call
  grpc::Status GetRxChannelLink(const ostrevan::grpcdapi::Channel& request,
                                ostrevan::grpcdapi::LinkInfo* reply);

  /// Changes the subscription of one receive channel.
  /// @param[in] request  the channel's number and its source; none removes the
  ///   subscription
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetRxChannelLink(const ostrevan::grpcdapi::LinkInfo& request,
                                ostrevan::grpcdapi::Success* reply);

  /// Reads the latency, in the daemon's unit.
  /// @param[out] reply  in the daemon's unit
  /// @return the status of the call
  grpc::Status GetLatency(ostrevan::grpcdapi::Latency* reply);

  /// Sets the latency, in the daemon's unit.
  /// @param[in] request  in the daemon's unit
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetLatency(const ostrevan::grpcdapi::Latency& request,
                          ostrevan::grpcdapi::Success* reply);

  /// Reads the software version.
  /// @param[out] reply  the text as the daemon forms it
  /// @return the status of the call
  grpc::Status GetSoftwareVersion(ostrevan::grpcdapi::Version* reply);

  /// Reads the firmware version.
  /// @param[out] reply  the text as the daemon forms it
  /// @return the status of the call
  grpc::Status GetFirmwareVersion(ostrevan::grpcdapi::Version* reply);

  /// Lists the sample rates that the module supports.
  /// @param[out] reply  in the daemon's unit and order
  /// @return the status of the call
  grpc::Status GetAvailableSampleRates(ostrevan::grpcdapi::AvailableSampleRates* reply);

  /// Reads the sample rate.
  /// @param[out] reply  in the daemon's unit
  /// @return the status of the call
  grpc::Status GetSampleRate(ostrevan::grpcdapi::SampleRate* reply);

  /// Sets the sample rate.
  /// @param[in] request  in the daemon's unit
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetSampleRate(const ostrevan::grpcdapi::SampleRate& request,
                             ostrevan::grpcdapi::Success* reply);

  /// Tells whether the module can do AES67.
  /// @param[out] reply  whether it can
  /// @return the status of the call
  grpc::Status GetIsAES67Available(ostrevan::grpcdapi::Status* reply);

  /// Tells whether AES67 is on.
  /// @param[out] reply  whether it is
  /// @return the status of the call
  grpc::Status GetAES67Status(ostrevan::grpcdapi::Status* reply);

  /// Turns AES67 on or off.
  /// @param[in] request  true: on
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetAES67Status(const ostrevan::grpcdapi::Status& request,
                              ostrevan::grpcdapi::Success* reply);

  /// Reads the manufacturer's name. No facade function hands it out.
  /// @param[out] reply  the name
  /// @return the status of the call
  grpc::Status GetManufacturerName(ostrevan::grpcdapi::Name* reply);

  /// Reads the model name.
  /// @param[out] reply  the name
  /// @return the status of the call
  grpc::Status GetModelName(ostrevan::grpcdapi::Name* reply);

  /// Reads the model version.
  /// @param[out] reply  the text as the daemon forms it
  /// @return the status of the call
  grpc::Status GetModelVersion(ostrevan::grpcdapi::Version* reply);

  /// Tells whether transmission is disabled.
  /// @param[out] reply  whether it is
  /// @return the status of the call
  grpc::Status GetDisableTxStatus(ostrevan::grpcdapi::Status* reply);

  /// Disables or enables transmission.
  /// @param[in] request  true: nothing is transmitted
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetDisableTxStatus(const ostrevan::grpcdapi::Status& request,
                                  ostrevan::grpcdapi::Success* reply);

  /// Tells whether the module is a PTP slave only.
  /// @param[out] reply  whether it is
  /// @return the status of the call
  grpc::Status GetPtpSlaveOnlyStatus(ostrevan::grpcdapi::Status* reply);

  /// Makes the module a PTP slave only, or lets it become master.
  /// @param[in] request  true: slave only
  /// @param[out] reply  whether the daemon did it
  /// @return the status of the call
  grpc::Status SetPtpSlaveOnlyStatus(const ostrevan::grpcdapi::Status& request,
                                     ostrevan::grpcdapi::Success* reply);

 private:
  DAPIClient();
  ~DAPIClient();

  std::unique_ptr<ostrevan::grpcdapi::DAPI::Stub> stub;
};
