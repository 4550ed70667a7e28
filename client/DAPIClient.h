// The process-wide client of the Dante API daemon's gRPC service, for code that
// wants the wire messages and the full call status. Most applications are
// better served by DantegRPC.h.
//
// Lifetime: one instance per process, built on the first call of GetInstance()
//   and destroyed at process exit. The endpoint comes from the environment
//   variable grpc_dapi_url (default "localhost:50008"), read once, when the
//   instance is built. Building it makes no call.
// Threads: every method may be called from several threads at once. Join the
//   threads that call before the process exits.
// Blocking: each method makes exactly one blocking unary call without a
//   deadline, on the RPC of its own name. A daemon that is absent or dies ends
//   the call in milliseconds; one that accepts the call and never answers holds
//   it for as long as its connection lives.
// Results: the gRPC status of the call, unchanged. Nothing is printed, retried
//   or translated. After a status other than OK the reply may be partly filled
//   and is not to be used. The on/off message ostrevan::grpcdapi::Status is not
//   the call status grpc::Status.
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
  /// callers wait for one of them to build it. Defined here so that the
  /// application and the library share one object. Throws what building it
  /// throws (std::bad_alloc); the next call then tries again.
  static DAPIClient& GetInstance() {
    static DAPIClient instance;
    return instance;
  }

  DAPIClient(const DAPIClient&) = delete;
  DAPIClient& operator=(const DAPIClient&) = delete;

  /// Reads the device name.
  grpc::Status GetName(ostrevan::grpcdapi::Name* reply);
  /// Sets the device name.
  grpc::Status SetName(const ostrevan::grpcdapi::Name& request, ostrevan::grpcdapi::Success* reply);
  /// Lists the transmit channels.
  grpc::Status GetTxChannels(ostrevan::grpcdapi::Channels* reply);
  /// Lists the receive channels.
  grpc::Status GetRxChannels(ostrevan::grpcdapi::Channels* reply);
  /// Renames one transmit channel.
  grpc::Status SetTxChannelName(const ostrevan::grpcdapi::Channel& request,
                                ostrevan::grpcdapi::Success* reply);
  /// Reads the subscription of one receive channel, named by its entry of the list.
  grpc::Status GetRxChannelLink(const ostrevan::grpcdapi::Channel& request,
                                ostrevan::grpcdapi::LinkInfo* reply);
  /// Changes the subscription of one receive channel.
  grpc::Status SetRxChannelLink(const ostrevan::grpcdapi::LinkInfo& request,
                                ostrevan::grpcdapi::Success* reply);
  /// Reads the latency, in the daemon's unit.
  grpc::Status GetLatency(ostrevan::grpcdapi::Latency* reply);
  /// Sets the latency, in the daemon's unit.
  grpc::Status SetLatency(const ostrevan::grpcdapi::Latency& request,
                          ostrevan::grpcdapi::Success* reply);
  /// Reads the software version.
  grpc::Status GetSoftwareVersion(ostrevan::grpcdapi::Version* reply);
  /// Reads the firmware version.
  grpc::Status GetFirmwareVersion(ostrevan::grpcdapi::Version* reply);
  /// Lists the sample rates that the module supports.
  grpc::Status GetAvailableSampleRates(ostrevan::grpcdapi::AvailableSampleRates* reply);
  /// Reads the sample rate.
  grpc::Status GetSampleRate(ostrevan::grpcdapi::SampleRate* reply);
  /// Sets the sample rate.
  grpc::Status SetSampleRate(const ostrevan::grpcdapi::SampleRate& request,
                             ostrevan::grpcdapi::Success* reply);
  /// Tells whether the module can do AES67.
  grpc::Status GetIsAES67Available(ostrevan::grpcdapi::Status* reply);
  /// Tells whether AES67 is on.
  grpc::Status GetAES67Status(ostrevan::grpcdapi::Status* reply);
  /// Turns AES67 on or off.
  grpc::Status SetAES67Status(const ostrevan::grpcdapi::Status& request,
                              ostrevan::grpcdapi::Success* reply);
  /// Reads the manufacturer's name. No facade function hands it out.
  grpc::Status GetManufacturerName(ostrevan::grpcdapi::Name* reply);
  /// Reads the model name.
  grpc::Status GetModelName(ostrevan::grpcdapi::Name* reply);
  /// Reads the model version.
  grpc::Status GetModelVersion(ostrevan::grpcdapi::Version* reply);
  /// Tells whether transmission is disabled.
  grpc::Status GetDisableTxStatus(ostrevan::grpcdapi::Status* reply);
  /// Disables or enables transmission.
  grpc::Status SetDisableTxStatus(const ostrevan::grpcdapi::Status& request,
                                  ostrevan::grpcdapi::Success* reply);
  /// Tells whether the module is a PTP slave only.
  grpc::Status GetPtpSlaveOnlyStatus(ostrevan::grpcdapi::Status* reply);
  /// Makes the module a PTP slave only, or lets it become master.
  grpc::Status SetPtpSlaveOnlyStatus(const ostrevan::grpcdapi::Status& request,
                                     ostrevan::grpcdapi::Success* reply);

 private:
  DAPIClient();
  ~DAPIClient();

  std::unique_ptr<ostrevan::grpcdapi::DAPI::Stub> stub;
};
