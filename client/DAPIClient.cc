#include "DAPIClient.h"

#include "client/channel.h"

namespace dapi = ostrevan::grpcdapi;
using client::Call;

DAPIClient::DAPIClient() : stub(dapi::DAPI::NewStub(client::MakeChannel(client::kDapiUrl))) {}

DAPIClient::~DAPIClient() = default;

// Defined here and not in the header, because a module that hides its own symbols would
// otherwise compile an instance of its own. Inline and used, because the instance and its
// guard are then exported, as data that debuggers and the record of the binary interface see.
[[gnu::used, gnu::visibility("default")]] inline DAPIClient& DAPIClient::GetInstance() {
  static DAPIClient instance;
  return instance;
}

grpc::Status DAPIClient::GetName(dapi::Name* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetName, reply);
}

grpc::Status DAPIClient::SetName(const dapi::Name& request, dapi::Success* reply) {
  return Call(*stub, &dapi::DAPI::Stub::SetName, request, reply);
}

grpc::Status DAPIClient::GetTxChannels(dapi::Channels* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetTxChannels, reply);
}

grpc::Status DAPIClient::GetRxChannels(dapi::Channels* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetRxChannels, reply);
}

grpc::Status DAPIClient::SetTxChannelName(const dapi::Channel& request, dapi::Success* reply) {
  return Call(*stub, &dapi::DAPI::Stub::SetTxChannelName, request, reply);
}

grpc::Status DAPIClient::GetRxChannelLink(const dapi::Channel& request, dapi::LinkInfo* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetRxChannelLink, request, reply);
}

grpc::Status DAPIClient::SetRxChannelLink(const dapi::LinkInfo& request, dapi::Success* reply) {
  return Call(*stub, &dapi::DAPI::Stub::SetRxChannelLink, request, reply);
}

grpc::Status DAPIClient::GetLatency(dapi::Latency* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetLatency, reply);
}

grpc::Status DAPIClient::SetLatency(const dapi::Latency& request, dapi::Success* reply) {
  return Call(*stub, &dapi::DAPI::Stub::SetLatency, request, reply);
}

grpc::Status DAPIClient::GetSoftwareVersion(dapi::Version* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetSoftwareVersion, reply);
}

grpc::Status DAPIClient::GetFirmwareVersion(dapi::Version* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetFirmwareVersion, reply);
}

grpc::Status DAPIClient::GetAvailableSampleRates(dapi::AvailableSampleRates* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetAvailableSampleRates, reply);
}

grpc::Status DAPIClient::GetSampleRate(dapi::SampleRate* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetSampleRate, reply);
}

grpc::Status DAPIClient::SetSampleRate(const dapi::SampleRate& request, dapi::Success* reply) {
  return Call(*stub, &dapi::DAPI::Stub::SetSampleRate, request, reply);
}

grpc::Status DAPIClient::GetIsAES67Available(dapi::Status* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetIsAES67Available, reply);
}

grpc::Status DAPIClient::GetAES67Status(dapi::Status* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetAES67Status, reply);
}

grpc::Status DAPIClient::SetAES67Status(const dapi::Status& request, dapi::Success* reply) {
  return Call(*stub, &dapi::DAPI::Stub::SetAES67Status, request, reply);
}

grpc::Status DAPIClient::GetManufacturerName(dapi::Name* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetManufacturerName, reply);
}

grpc::Status DAPIClient::GetModelName(dapi::Name* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetModelName, reply);
}

grpc::Status DAPIClient::GetModelVersion(dapi::Version* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetModelVersion, reply);
}

grpc::Status DAPIClient::GetDisableTxStatus(dapi::Status* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetDisableTxStatus, reply);
}

grpc::Status DAPIClient::SetDisableTxStatus(const dapi::Status& request, dapi::Success* reply) {
  return Call(*stub, &dapi::DAPI::Stub::SetDisableTxStatus, request, reply);
}

grpc::Status DAPIClient::GetPtpSlaveOnlyStatus(dapi::Status* reply) {
  return Call(*stub, &dapi::DAPI::Stub::GetPtpSlaveOnlyStatus, reply);
}

grpc::Status DAPIClient::SetPtpSlaveOnlyStatus(const dapi::Status& request, dapi::Success* reply) {
  return Call(*stub, &dapi::DAPI::Stub::SetPtpSlaveOnlyStatus, request, reply);
}
