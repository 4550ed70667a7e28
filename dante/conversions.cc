#include "dante/conversions.h"

namespace dapi = ostrevan::grpcdapi;

namespace dante {
namespace {

// A raw message without an address describes no stream, so isRaw depends on it.
void RawToRecord(const dapi::rawLinkInfo& raw, DantegRPC::ChannelLink& record) {
  record.isRaw = !raw.ip().empty();
  record.ip = raw.ip();
  record.value2 = raw.value2();
  record.value3 = raw.value3();
  record.value4 = raw.value4();
  record.value5 = raw.value5();
  record.value6 = raw.value6();
  record.encoding = raw.encoding();
  record.sip = raw.sip();
  record.hasSessionId = raw.has_sessionid();
  record.sessionId = raw.sessionid();
}

void RawToWire(const DantegRPC::ChannelLink& record, dapi::rawLinkInfo& raw) {
  using dapi::L16;
  using dapi::L24;
  raw.set_ip(record.ip);
  raw.set_value2(record.value2);
  raw.set_value3(record.value3);
  raw.set_value4(record.value4);
  raw.set_value5(record.value5);
  raw.set_value6(record.value6);
  raw.set_encoding(record.encoding == L16 ? L16 : L24);
  raw.set_sip(record.sip);
  if (record.hasSessionId) raw.set_sessionid(record.sessionId);
}

void NamesToWire(const DantegRPC::ChannelLink& record, dapi::LinkInfo& request) {
  request.set_devicename(record.deviceName);
  request.set_channelname(record.channelName);
}

}  // namespace

DantegRPC::Channel ToRecord(const dapi::Channel& channel) { return {channel.id(), channel.name()}; }

void ToWire(const DantegRPC::Channel& record, dapi::Channel& request) {
  request.set_id(record.id);
  request.set_name(record.name);
}

DantegRPC::ChannelLink ToRecord(std::int32_t id, const dapi::LinkInfo& link) {
  DantegRPC::ChannelLink record;
  record.rxChannelId = id;
  record.channelName = link.channelname();
  record.deviceName = link.devicename();
  if (link.has_raw()) RawToRecord(link.raw(), record);
  return record;
}

void ToWire(const DantegRPC::ChannelLink& record, dapi::LinkInfo& request) {
  request.set_id(record.rxChannelId);
  if (record.isRaw) {
    if (record.ip.empty()) return;
    NamesToWire(record, request);
    RawToWire(record, *request.mutable_raw());
  } else if (!record.channelName.empty() && !record.deviceName.empty()) {
    NamesToWire(record, request);
  }
}

}  // namespace dante
