#include "client/DAPIClient.h"

#include "client/channel.h"

using client::Call;
using ostrevan::grpcdapi::AvailableSampleRates;
using ostrevan::grpcdapi::Channel;
using ostrevan::grpcdapi::Channels;
using ostrevan::grpcdapi::DAPI;
using ostrevan::grpcdapi::Latency;
using ostrevan::grpcdapi::LinkInfo;
using ostrevan::grpcdapi::Name;
using ostrevan::grpcdapi::SampleRate;
using ostrevan::grpcdapi::Status;
using ostrevan::grpcdapi::Success;
using ostrevan::grpcdapi::Version;
using Stub = DAPI::Stub;

DAPIClient::DAPIClient() : stub(DAPI::NewStub(client::MakeChannel(client::kDapiUrl))) {}

DAPIClient::~DAPIClient() = default;

grpc::Status DAPIClient::GetName(Name* reply) { return Call(*stub, &Stub::GetName, reply); }

grpc::Status DAPIClient::SetName(const Name& request, Success* reply) {
  return Call(*stub, &Stub::SetName, request, reply);
}

grpc::Status DAPIClient::GetTxChannels(Channels* reply) {
  return Call(*stub, &Stub::GetTxChannels, reply);
}

grpc::Status DAPIClient::GetRxChannels(Channels* reply) {
  return Call(*stub, &Stub::GetRxChannels, reply);
}

grpc::Status DAPIClient::SetTxChannelName(const Channel& request, Success* reply) {
  return Call(*stub, &Stub::SetTxChannelName, request, reply);
}

grpc::Status DAPIClient::GetRxChannelLink(const Channel& request, LinkInfo* reply) {
  return Call(*stub, &Stub::GetRxChannelLink, request, reply);
}

grpc::Status DAPIClient::SetRxChannelLink(const LinkInfo& request, Success* reply) {
  return Call(*stub, &Stub::SetRxChannelLink, request, reply);
}

grpc::Status DAPIClient::GetLatency(Latency* reply) {
  return Call(*stub, &Stub::GetLatency, reply);
}

grpc::Status DAPIClient::SetLatency(const Latency& request, Success* reply) {
  return Call(*stub, &Stub::SetLatency, request, reply);
}

grpc::Status DAPIClient::GetSoftwareVersion(Version* reply) {
  return Call(*stub, &Stub::GetSoftwareVersion, reply);
}

grpc::Status DAPIClient::GetFirmwareVersion(Version* reply) {
  return Call(*stub, &Stub::GetFirmwareVersion, reply);
}

grpc::Status DAPIClient::GetAvailableSampleRates(AvailableSampleRates* reply) {
  return Call(*stub, &Stub::GetAvailableSampleRates, reply);
}

grpc::Status DAPIClient::GetSampleRate(SampleRate* reply) {
  return Call(*stub, &Stub::GetSampleRate, reply);
}

grpc::Status DAPIClient::SetSampleRate(const SampleRate& request, Success* reply) {
  return Call(*stub, &Stub::SetSampleRate, request, reply);
}

grpc::Status DAPIClient::GetIsAES67Available(Status* reply) {
  return Call(*stub, &Stub::GetIsAES67Available, reply);
}

grpc::Status DAPIClient::GetAES67Status(Status* reply) {
  return Call(*stub, &Stub::GetAES67Status, reply);
}

grpc::Status DAPIClient::SetAES67Status(const Status& request, Success* reply) {
  return Call(*stub, &Stub::SetAES67Status, request, reply);
}

grpc::Status DAPIClient::GetManufacturerName(Name* reply) {
  return Call(*stub, &Stub::GetManufacturerName, reply);
}

grpc::Status DAPIClient::GetModelName(Name* reply) {
  return Call(*stub, &Stub::GetModelName, reply);
}

grpc::Status DAPIClient::GetModelVersion(Version* reply) {
  return Call(*stub, &Stub::GetModelVersion, reply);
}

grpc::Status DAPIClient::GetDisableTxStatus(Status* reply) {
  return Call(*stub, &Stub::GetDisableTxStatus, reply);
}

grpc::Status DAPIClient::SetDisableTxStatus(const Status& request, Success* reply) {
  return Call(*stub, &Stub::SetDisableTxStatus, request, reply);
}

grpc::Status DAPIClient::GetPtpSlaveOnlyStatus(Status* reply) {
  return Call(*stub, &Stub::GetPtpSlaveOnlyStatus, reply);
}

grpc::Status DAPIClient::SetPtpSlaveOnlyStatus(const Status& request, Success* reply) {
  return Call(*stub, &Stub::SetPtpSlaveOnlyStatus, request, reply);
}
