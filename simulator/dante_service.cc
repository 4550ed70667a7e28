#include "simulator/dante_service.h"

#include "simulator/dante_rules.h"

namespace wire = ostrevan::grpcdapi;
using grpc::ServerContext;
using grpc::Status;
using ostrevan::common::Empty;

namespace simulator {
namespace {

void ToWire(const std::vector<Channel>& channels, wire::Channels& out) {
  for (const Channel& channel : channels) {
    wire::Channel& added = *out.add_channels();
    added.set_id(channel.id);
    added.set_name(channel.name);
    added.set_defaultname(channel.default_name);
  }
}

void ToWire(const RawStream& raw, wire::rawLinkInfo& out) {
  out.set_ip(raw.ip);
  out.set_value2(raw.values[0]);
  out.set_value3(raw.values[1]);
  out.set_value4(raw.values[2]);
  out.set_value5(raw.values[3]);
  out.set_value6(raw.values[4]);
  out.set_encoding(static_cast<wire::Encoding>(raw.encoding));
  out.set_sip(raw.sip);
  if (raw.session_id.has_value()) out.set_sessionid(*raw.session_id);
}

RawStream FromWire(const wire::rawLinkInfo& in) {
  RawStream raw;
  raw.ip = in.ip();
  raw.values = {in.value2(), in.value3(), in.value4(), in.value5(), in.value6()};
  raw.encoding = in.encoding();
  raw.sip = in.sip();
  if (in.has_sessionid()) raw.session_id = in.sessionid();
  return raw;
}

void ToWire(const Link& link, wire::LinkInfo& out) {
  out.set_devicename(link.device_name);
  out.set_channelname(link.channel_name);
  if (link.raw.has_value()) ToWire(*link.raw, *out.mutable_raw());
  out.set_flag5(link.flag5);
}

Link FromWire(const wire::LinkInfo& in) {
  Link link;
  link.device_name = in.devicename();
  link.channel_name = in.channelname();
  if (in.has_raw()) link.raw = FromWire(in.raw());
  link.flag5 = in.flag5();
  return link;
}

// A copy of one setting of the module.
template <class Value>
Value Get(SharedDevice& device, Value Dante::*setting) {
  return device.With([setting](const Device& it) { return it.dante.*setting; });
}

// For a setting of which every value is accepted.
template <class Value>
void Set(SharedDevice& device, Value Dante::*setting, const Value& value) {
  device.With([&](Device& it) { it.dante.*setting = value; });
}

}  // namespace

// --- Identity ------------------------------------------------------------------

Status DanteService::GetName(ServerContext*, const Empty*, wire::Name* reply) {
  reply->set_name(Get(device, &Dante::name));
  return Status::OK;
}

Status DanteService::SetName(ServerContext*, const wire::Name* request, wire::Success* reply) {
  Set(device, &Dante::name, request->name());
  reply->set_success(true);
  return Status::OK;
}

Status DanteService::GetSoftwareVersion(ServerContext*, const Empty*, wire::Version* reply) {
  reply->set_version(Get(device, &Dante::software_version));
  return Status::OK;
}

Status DanteService::GetFirmwareVersion(ServerContext*, const Empty*, wire::Version* reply) {
  reply->set_version(Get(device, &Dante::firmware_version));
  return Status::OK;
}

Status DanteService::GetManufacturerName(ServerContext*, const Empty*, wire::Name* reply) {
  reply->set_name(Get(device, &Dante::manufacturer));
  return Status::OK;
}

Status DanteService::GetModelName(ServerContext*, const Empty*, wire::Name* reply) {
  reply->set_name(Get(device, &Dante::model_name));
  return Status::OK;
}

Status DanteService::GetModelVersion(ServerContext*, const Empty*, wire::Version* reply) {
  reply->set_version(Get(device, &Dante::model_version));
  return Status::OK;
}

// --- Channels and routing ------------------------------------------------------

Status DanteService::GetTxChannels(ServerContext*, const Empty*, wire::Channels* reply) {
  ToWire(Get(device, &Dante::tx), *reply);
  return Status::OK;
}

Status DanteService::GetRxChannels(ServerContext*, const Empty*, wire::Channels* reply) {
  ToWire(Get(device, &Dante::rx), *reply);
  return Status::OK;
}

Status DanteService::SetTxChannelName(ServerContext*, const wire::Channel* request,
                                      wire::Success* reply) {
  reply->set_success(device.With(
      [&](Device& it) { return SetChannelName(it.dante.tx, request->id(), request->name()); }));
  return Status::OK;
}

Status DanteService::SetRxChannelName(ServerContext*, const wire::Channel* request,
                                      wire::Success* reply) {
  reply->set_success(device.With(
      [&](Device& it) { return SetChannelName(it.dante.rx, request->id(), request->name()); }));
  return Status::OK;
}

// The reply has no flag to refuse with, so that an unknown channel is an error.
Status DanteService::GetRxChannelLink(ServerContext*, const wire::Channel* request,
                                      wire::LinkInfo* reply) {
  return device.With([&](const Device& it) {
    if (!HasRxChannel(it.dante, request->id()))
      return Status(grpc::StatusCode::NOT_FOUND, "no such receive channel");
    reply->set_id(request->id());
    const auto link = it.dante.links.find(request->id());
    if (link != it.dante.links.end()) ToWire(link->second, *reply);
    return Status::OK;
  });
}

Status DanteService::SetRxChannelLink(ServerContext*, const wire::LinkInfo* request,
                                      wire::Success* reply) {
  reply->set_success(device.With(
      [&](Device& it) { return SetLink(it.dante, request->id(), FromWire(*request)); }));
  return Status::OK;
}

// --- Audio settings ------------------------------------------------------------

Status DanteService::GetLatency(ServerContext*, const Empty*, wire::Latency* reply) {
  reply->set_latency(Get(device, &Dante::latency));
  return Status::OK;
}

Status DanteService::GetMinLatency(ServerContext*, const Empty*, wire::Latency* reply) {
  reply->set_latency(Get(device, &Dante::min_latency));
  return Status::OK;
}

Status DanteService::SetLatency(ServerContext*, const wire::Latency* request,
                                wire::Success* reply) {
  reply->set_success(
      device.With([&](Device& it) { return simulator::SetLatency(it.dante, request->latency()); }));
  return Status::OK;
}

Status DanteService::GetAvailableSampleRates(ServerContext*, const Empty*,
                                             wire::AvailableSampleRates* reply) {
  for (const std::uint32_t rate : Get(device, &Dante::sample_rates)) reply->add_samplerates(rate);
  return Status::OK;
}

Status DanteService::GetSampleRate(ServerContext*, const Empty*, wire::SampleRate* reply) {
  reply->set_samplerate(Get(device, &Dante::sample_rate));
  return Status::OK;
}

Status DanteService::SetSampleRate(ServerContext*, const wire::SampleRate* request,
                                   wire::Success* reply) {
  reply->set_success(device.With(
      [&](Device& it) { return simulator::SetSampleRate(it.dante, request->samplerate()); }));
  return Status::OK;
}

Status DanteService::GetIsAES67Available(ServerContext*, const Empty*, wire::Status* reply) {
  reply->set_status(Get(device, &Dante::aes67_available));
  return Status::OK;
}

Status DanteService::GetAES67Status(ServerContext*, const Empty*, wire::Status* reply) {
  reply->set_status(Get(device, &Dante::aes67));
  return Status::OK;
}

Status DanteService::SetAES67Status(ServerContext*, const wire::Status* request,
                                    wire::Success* reply) {
  reply->set_success(
      device.With([&](Device& it) { return SetAes67(it.dante, request->status()); }));
  return Status::OK;
}

Status DanteService::GetDisableTxStatus(ServerContext*, const Empty*, wire::Status* reply) {
  reply->set_status(Get(device, &Dante::tx_disabled));
  return Status::OK;
}

Status DanteService::SetDisableTxStatus(ServerContext*, const wire::Status* request,
                                        wire::Success* reply) {
  Set(device, &Dante::tx_disabled, request->status());
  reply->set_success(true);
  return Status::OK;
}

// --- Clock and connection ------------------------------------------------------

Status DanteService::GetPtpConfig(ServerContext*, const Empty*, wire::PtpConfig* reply) {
  const Ptp ptp = Get(device, &Dante::ptp);
  reply->set_value1(ptp.config_value1);
  reply->set_value2(ptp.config_value2);
  return Status::OK;
}

Status DanteService::GetPtpStatus(ServerContext*, const Empty*, wire::PtpStatus* reply) {
  const Ptp ptp = Get(device, &Dante::ptp);
  reply->set_value1(ptp.status_value1);
  reply->set_clockstatus(static_cast<wire::ClockStatus>(ptp.clock));
  return Status::OK;
}

Status DanteService::GetPtpSlaveOnlyStatus(ServerContext*, const Empty*, wire::Status* reply) {
  reply->set_status(Get(device, &Dante::ptp).slave_only);
  return Status::OK;
}

Status DanteService::SetPtpSlaveOnlyStatus(ServerContext*, const wire::Status* request,
                                           wire::Success* reply) {
  device.With([&](Device& it) { it.dante.ptp.slave_only = request->status(); });
  reply->set_success(true);
  return Status::OK;
}

// The module is part of this process: there is no connection to renew.
Status DanteService::Reconnect(ServerContext*, const Empty*, Empty*) { return Status::OK; }

}  // namespace simulator
