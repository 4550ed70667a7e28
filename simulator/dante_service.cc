// The Dante API daemon's RPCs.
#include "simulator/dante_rules.h"
#include "simulator/find_by_id.h"
#include "simulator/service.h"

namespace dapi = ostrevan::grpcdapi;
using grpc::Status;
using ostrevan::common::Empty;

namespace simulator {
namespace {

void ToWire(const std::vector<Channel>& channels, dapi::Channels& out) {
  for (const Channel& channel : channels) {
    dapi::Channel& added = *out.add_channels();
    added.set_id(channel.id);
    added.set_name(channel.name);
    added.set_defaultname(channel.default_name);
  }
}

void ToWire(const RawStream& raw, dapi::rawLinkInfo& out) {
  out.set_ip(raw.ip);
  out.set_value2(raw.values[0]);
  out.set_value3(raw.values[1]);
  out.set_value4(raw.values[2]);
  out.set_value5(raw.values[3]);
  out.set_value6(raw.values[4]);
  out.set_encoding(static_cast<dapi::Encoding>(raw.encoding));
  out.set_sip(raw.sip);
  if (raw.session_id.has_value()) out.set_sessionid(*raw.session_id);
}

RawStream FromWire(const dapi::rawLinkInfo& in) {
  RawStream raw;
  raw.ip = in.ip();
  raw.values = {in.value2(), in.value3(), in.value4(), in.value5(), in.value6()};
  raw.encoding = in.encoding();
  raw.sip = in.sip();
  if (in.has_sessionid()) raw.session_id = in.sessionid();
  return raw;
}

void ToWire(const Link& link, dapi::LinkInfo& out) {
  out.set_devicename(link.device_name);
  out.set_channelname(link.channel_name);
  if (link.raw.has_value()) ToWire(*link.raw, *out.mutable_raw());
  out.set_flag5(link.flag5);
}

Link FromWire(const dapi::LinkInfo& in) {
  Link link;
  link.device_name = in.devicename();
  link.channel_name = in.channelname();
  if (in.has_raw()) link.raw = FromWire(in.raw());
  link.flag5 = in.flag5();
  return link;
}

std::vector<Method> IdentityMethods() {
  return {
      Read("GetName", [](const Device& it, dapi::Name& reply) { reply.set_name(it.dante.name); }),
      Change<dapi::Success>("SetName",
                            [](Device& it, const dapi::Name& request) {
                              it.dante.name = request.name();
                              return true;
                            }),
      Read("GetManufacturerName",
           [](const Device& it, dapi::Name& reply) { reply.set_name(it.dante.manufacturer); }),
      Read("GetModelName",
           [](const Device& it, dapi::Name& reply) { reply.set_name(it.dante.model_name); }),
      Read("GetModelVersion",
           [](const Device& it, dapi::Version& reply) {
             reply.set_version(it.dante.model_version);
           }),
      Read("GetSoftwareVersion",
           [](const Device& it, dapi::Version& reply) {
             reply.set_version(it.dante.software_version);
           }),
      Read("GetFirmwareVersion",
           [](const Device& it, dapi::Version& reply) {
             reply.set_version(it.dante.firmware_version);
           }),
  };
}

std::vector<Method> ChannelMethods() {
  return {
      Read("GetTxChannels",
           [](const Device& it, dapi::Channels& reply) { ToWire(it.dante.tx, reply); }),
      Read("GetRxChannels",
           [](const Device& it, dapi::Channels& reply) { ToWire(it.dante.rx, reply); }),
      Change<dapi::Success>("SetTxChannelName",
                            [](Device& it, const dapi::Channel& request) {
                              return SetChannelName(it.dante.tx, request.id(), request.name());
                            }),
      Change<dapi::Success>("SetRxChannelName",
                            [](Device& it, const dapi::Channel& request) {
                              return SetChannelName(it.dante.rx, request.id(), request.name());
                            }),
      // The reply has no success field, so an unknown channel fails the call.
      Read("GetRxChannelLink",
           [](const Device& it, const dapi::Channel& request, dapi::LinkInfo& reply) {
             if (FindById(it.dante.rx, request.id()) == nullptr)
               return Status(grpc::StatusCode::NOT_FOUND, "no such receive channel");
             reply.set_id(request.id());
             const auto link = it.dante.links.find(request.id());
             if (link != it.dante.links.end()) ToWire(link->second, reply);
             return Status::OK;
           }),
      Change<dapi::Success>("SetRxChannelLink",
                            [](Device& it, const dapi::LinkInfo& request) {
                              return SetLink(it.dante, request.id(), FromWire(request));
                            }),
  };
}

std::vector<Method> AudioMethods() {
  return {
      Read("GetLatency",
           [](const Device& it, dapi::Latency& reply) { reply.set_latency(it.dante.latency); }),
      Read("GetMinLatency",
           [](const Device& it, dapi::Latency& reply) { reply.set_latency(it.dante.min_latency); }),
      Change<dapi::Success>("SetLatency",
                            [](Device& it, const dapi::Latency& request) {
                              return SetLatency(it.dante, request.latency());
                            }),
      Read("GetAvailableSampleRates",
           [](const Device& it, dapi::AvailableSampleRates& reply) {
             for (const std::uint32_t rate : it.dante.sample_rates) reply.add_samplerates(rate);
           }),
      Read("GetSampleRate",
           [](const Device& it, dapi::SampleRate& reply) {
             reply.set_samplerate(it.dante.sample_rate);
           }),
      Change<dapi::Success>("SetSampleRate",
                            [](Device& it, const dapi::SampleRate& request) {
                              return SetSampleRate(it.dante, request.samplerate());
                            }),
      Read("GetIsAES67Available",
           [](const Device& it, dapi::Status& reply) {
             reply.set_status(it.dante.aes67_available);
           }),
      Read("GetAES67Status",
           [](const Device& it, dapi::Status& reply) { reply.set_status(it.dante.aes67); }),
      Change<dapi::Success>("SetAES67Status",
                            [](Device& it, const dapi::Status& request) {
                              return SetAes67(it.dante, request.status());
                            }),
      Read("GetDisableTxStatus",
           [](const Device& it, dapi::Status& reply) { reply.set_status(it.dante.tx_disabled); }),
      Change<dapi::Success>("SetDisableTxStatus",
                            [](Device& it, const dapi::Status& request) {
                              it.dante.tx_disabled = request.status();
                              return true;
                            }),
  };
}

std::vector<Method> ClockMethods() {
  return {
      Read("GetPtpConfig",
           [](const Device& it, dapi::PtpConfig& reply) {
             reply.set_value1(it.dante.ptp.config_value1);
             reply.set_value2(it.dante.ptp.config_value2);
           }),
      Read("GetPtpStatus",
           [](const Device& it, dapi::PtpStatus& reply) {
             reply.set_value1(it.dante.ptp.status_value1);
             reply.set_clockstatus(static_cast<dapi::ClockStatus>(it.dante.ptp.clock));
           }),
      Read(
          "GetPtpSlaveOnlyStatus",
          [](const Device& it, dapi::Status& reply) { reply.set_status(it.dante.ptp.slave_only); }),
      Change<dapi::Success>("SetPtpSlaveOnlyStatus",
                            [](Device& it, const dapi::Status& request) {
                              it.dante.ptp.slave_only = request.status();
                              return true;
                            }),
      // The module is part of this process: there is no connection to renew.
      Read("Reconnect", [](const Device&, Empty&) {}),
  };
}

}  // namespace

std::vector<Method> DanteMethods() {
  std::vector<Method> methods;
  for (const auto& some : {IdentityMethods(), ChannelMethods(), AudioMethods(), ClockMethods()})
    methods.insert(methods.end(), some.begin(), some.end());
  return methods;
}

}  // namespace simulator
