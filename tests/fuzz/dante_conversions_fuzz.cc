// Replies of the Dante API daemon converted to records, and records to requests.
//
// Input: the bytes of a Channels and of a LinkInfo, each with its length.
#include <google/protobuf/stubs/logging.h>

#include "dante/conversions.h"
#include "tests/fuzz/fuzz.h"

namespace {

namespace dapi = ostrevan::grpcdapi;
using Link = DantegRPC::ChannelLink;
using fuzz::Check;

void CheckChannel(const dapi::Channel& channel) {
  const DantegRPC::Channel record = dante::ToRecord(channel);
  Check(record.id == channel.id() && record.name == channel.name(), "a channel is copied");
  dapi::Channel request;
  dante::ToWire(record, request);
  Check(request.id() == channel.id() && request.name() == channel.name() &&
            request.defaultname().empty(),
        "a request has no default name");
}

void CheckRecord(std::int32_t id, const dapi::LinkInfo& link, const Link& record) {
  const dapi::rawLinkInfo& raw = link.raw();  // all zero when there is none
  Check(record.rxChannelId == id, "the id is that of the channel");
  Check(record.channelName == link.channelname() && record.deviceName == link.devicename(),
        "names are copied");
  Check(record.isRaw == !raw.ip().empty(), "a stream without an address is not raw");
  Check(record.ip == raw.ip() && record.sip == raw.sip(), "addresses are copied");
  Check(record.value2 == raw.value2() && record.value3 == raw.value3() &&
            record.value4 == raw.value4() && record.value5 == raw.value5() &&
            record.value6 == raw.value6(),
        "parameters are copied");
  Check(record.encoding == static_cast<std::int32_t>(raw.encoding()), "encoding is copied");
  Check(record.hasSessionId == raw.has_sessionid() && record.sessionId == raw.sessionid(),
        "the session is copied");
}

void CheckRequest(const Link& record) {
  dapi::LinkInfo expected;
  expected.set_id(record.rxChannelId);
  const bool named = !record.channelName.empty() && !record.deviceName.empty();
  if (record.isRaw ? !record.ip.empty() : named) {
    expected.set_devicename(record.deviceName);
    expected.set_channelname(record.channelName);
  }
  if (record.isRaw && !record.ip.empty()) {
    auto& raw = *expected.mutable_raw();
    raw.set_ip(record.ip);
    raw.set_value2(record.value2);
    raw.set_value3(record.value3);
    raw.set_value4(record.value4);
    raw.set_value5(record.value5);
    raw.set_value6(record.value6);
    raw.set_encoding(record.encoding == 1 ? dapi::L16 : dapi::L24);
    raw.set_sip(record.sip);
    if (record.hasSessionId) raw.set_sessionid(record.sessionId);
  }
  dapi::LinkInfo request;
  dante::ToWire(record, request);
  Check(request.SerializeAsString() == expected.SerializeAsString(),
        "a request names a complete source, or only the channel");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  google::protobuf::SetLogHandler(nullptr);  // it reports every invalid UTF-8 string
  fuzz::Input input(data, size);
  dapi::Channels channels;
  if (!input.ParsePart(channels)) return 0;
  for (const auto& channel : channels.channels()) CheckChannel(channel);

  dapi::LinkInfo link;
  if (!input.ParsePart(link)) return 0;
  const std::int32_t id = channels.channels_size();
  Link record = dante::ToRecord(id, link);
  CheckRecord(id, link, record);
  CheckRequest(record);
  // A combination that no reply results in.
  record.isRaw = !record.isRaw;
  CheckRequest(record);
  return 0;
}
