// The Dante API daemon's gRPC service: translates between the wire and the
// model. What is accepted is decided in dante_rules.h.
#pragma once

#include <grpcpp/server_context.h>

#include "ostrevan/grpcdapi.grpc.pb.h"
#include "simulator/shared_device.h"

namespace simulator {

class DanteService : public ostrevan::grpcdapi::DAPI::Service {
 public:
  /// The device must outlive the service.
  explicit DanteService(SharedDevice& shared) : device(shared) {}

  grpc::Status GetName(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                       ostrevan::grpcdapi::Name* reply) override;
  grpc::Status SetName(grpc::ServerContext* context, const ostrevan::grpcdapi::Name* request,
                       ostrevan::grpcdapi::Success* reply) override;
  grpc::Status GetTxChannels(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                             ostrevan::grpcdapi::Channels* reply) override;
  grpc::Status GetRxChannels(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                             ostrevan::grpcdapi::Channels* reply) override;
  grpc::Status SetTxChannelName(grpc::ServerContext* context,
                                const ostrevan::grpcdapi::Channel* request,
                                ostrevan::grpcdapi::Success* reply) override;
  grpc::Status SetRxChannelName(grpc::ServerContext* context,
                                const ostrevan::grpcdapi::Channel* request,
                                ostrevan::grpcdapi::Success* reply) override;
  grpc::Status GetRxChannelLink(grpc::ServerContext* context,
                                const ostrevan::grpcdapi::Channel* request,
                                ostrevan::grpcdapi::LinkInfo* reply) override;
  grpc::Status SetRxChannelLink(grpc::ServerContext* context,
                                const ostrevan::grpcdapi::LinkInfo* request,
                                ostrevan::grpcdapi::Success* reply) override;
  grpc::Status GetLatency(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                          ostrevan::grpcdapi::Latency* reply) override;
  grpc::Status GetMinLatency(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                             ostrevan::grpcdapi::Latency* reply) override;
  grpc::Status SetLatency(grpc::ServerContext* context, const ostrevan::grpcdapi::Latency* request,
                          ostrevan::grpcdapi::Success* reply) override;
  grpc::Status GetSoftwareVersion(grpc::ServerContext* context,
                                  const ostrevan::common::Empty* request,
                                  ostrevan::grpcdapi::Version* reply) override;
  grpc::Status GetFirmwareVersion(grpc::ServerContext* context,
                                  const ostrevan::common::Empty* request,
                                  ostrevan::grpcdapi::Version* reply) override;
  grpc::Status GetAvailableSampleRates(grpc::ServerContext* context,
                                       const ostrevan::common::Empty* request,
                                       ostrevan::grpcdapi::AvailableSampleRates* reply) override;
  grpc::Status GetSampleRate(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                             ostrevan::grpcdapi::SampleRate* reply) override;
  grpc::Status SetSampleRate(grpc::ServerContext* context,
                             const ostrevan::grpcdapi::SampleRate* request,
                             ostrevan::grpcdapi::Success* reply) override;
  grpc::Status GetIsAES67Available(grpc::ServerContext* context,
                                   const ostrevan::common::Empty* request,
                                   ostrevan::grpcdapi::Status* reply) override;
  grpc::Status GetAES67Status(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                              ostrevan::grpcdapi::Status* reply) override;
  grpc::Status SetAES67Status(grpc::ServerContext* context,
                              const ostrevan::grpcdapi::Status* request,
                              ostrevan::grpcdapi::Success* reply) override;
  grpc::Status GetManufacturerName(grpc::ServerContext* context,
                                   const ostrevan::common::Empty* request,
                                   ostrevan::grpcdapi::Name* reply) override;
  grpc::Status GetModelName(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                            ostrevan::grpcdapi::Name* reply) override;
  grpc::Status GetModelVersion(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                               ostrevan::grpcdapi::Version* reply) override;
  grpc::Status GetPtpConfig(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                            ostrevan::grpcdapi::PtpConfig* reply) override;
  grpc::Status GetPtpStatus(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                            ostrevan::grpcdapi::PtpStatus* reply) override;
  grpc::Status Reconnect(grpc::ServerContext* context, const ostrevan::common::Empty* request,
                         ostrevan::common::Empty* reply) override;
  grpc::Status GetDisableTxStatus(grpc::ServerContext* context,
                                  const ostrevan::common::Empty* request,
                                  ostrevan::grpcdapi::Status* reply) override;
  grpc::Status SetDisableTxStatus(grpc::ServerContext* context,
                                  const ostrevan::grpcdapi::Status* request,
                                  ostrevan::grpcdapi::Success* reply) override;
  grpc::Status GetPtpSlaveOnlyStatus(grpc::ServerContext* context,
                                     const ostrevan::common::Empty* request,
                                     ostrevan::grpcdapi::Status* reply) override;
  grpc::Status SetPtpSlaveOnlyStatus(grpc::ServerContext* context,
                                     const ostrevan::grpcdapi::Status* request,
                                     ostrevan::grpcdapi::Success* reply) override;

 private:
  SharedDevice& device;
};

}  // namespace simulator
