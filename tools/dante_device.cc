// Reads and sets the settings of the Dante module.
#include "state_document/table.h"
#include "tools/call.h"
#include "tools/dante.h"
#include "tools/parallel.h"
#include "tools/tool.h"

namespace tool {
namespace {

dapi::Status ToStatus(bool on) {
  dapi::Status status;
  status.set_status(on);
  return status;
}

std::string SwitchAction(const char* what, bool on) {
  return std::string("switch ") + what + " " + OnOff(on);
}

void Rename(std::int32_t id, const std::string& name, const std::string& direction,
            dapi::Channels (*read)(),
            const Rpc<dapi::DAPI::Stub, dapi::Channel, dapi::Success>& set_name) {
  dapi::Channel request;
  request.set_id(id);
  request.set_name(name);
  ChangeObject({"channel list", [=] { return FindById(read().channels(), id) != nullptr; }},
               set_name, "rename " + direction + " channel " + std::to_string(id), request);
}

}  // namespace

std::string ReadDeviceName() { return Read(rpc::kGetName, "read the device name").name(); }

std::uint32_t ReadSampleRate() {
  return Read(rpc::kGetSampleRate, "read the sample rate").samplerate();
}

std::vector<std::uint32_t> ReadSampleRates() {
  const auto reply = Read(rpc::kGetAvailableSampleRates, "list the sample rates");
  return {reply.samplerates().begin(), reply.samplerates().end()};
}

std::uint32_t ReadLatency() { return Read(rpc::kGetLatency, "read the latency").latency(); }

bool ReadAes67() { return Read(rpc::kGetAES67Status, "read whether AES67 is on").status(); }

bool ReadTransmitDisabled() {
  return Read(rpc::kGetDisableTxStatus, "read whether transmission is disabled").status();
}

bool ReadPtpSlaveOnly() {
  return Read(rpc::kGetPtpSlaveOnlyStatus, "read the PTP slave-only mode").status();
}

Json ReadPtp() {
  const auto status = ReadIfImplemented(rpc::kGetPtpStatus, "read the state of the PTP clock");
  const auto config =
      ReadIfImplemented(rpc::kGetPtpConfig, "read the configuration of the PTP clock");
  Json ptp = {{"clock", nullptr},
              {"value1", nullptr},
              {"slave_only", ReadPtpSlaveOnly()},
              {"config", {{"value1", nullptr}, {"value2", nullptr}}}};
  if (status) {
    ptp["clock"] = state_document::NameOf(state_document::kClocks, status->clockstatus());
    ptp["value1"] = status->value1();
  }
  if (config) ptp["config"] = {{"value1", config->value1()}, {"value2", config->value2()}};
  return ptp;
}

bool IsSynchronised(const Json& clock) { return clock == "passive" || clock == "disciplined"; }

void SetDeviceName(const std::string& name) {
  dapi::Name request;
  request.set_name(name);
  Change(rpc::kSetName, "set the device name", request);
}

void SetSampleRate(std::uint32_t rate) {
  dapi::SampleRate request;
  request.set_samplerate(rate);
  Change(rpc::kSetSampleRate, "set the sample rate", request);
}

void SetLatency(std::uint32_t latency) {
  dapi::Latency request;
  request.set_latency(latency);
  Change(rpc::kSetLatency, "set the latency", request);
}

void SetAes67(bool on) { Change(rpc::kSetAES67Status, SwitchAction("AES67", on), ToStatus(on)); }

void SetTransmitDisabled(bool disabled) {
  Change(rpc::kSetDisableTxStatus, SwitchAction("transmission", !disabled), ToStatus(disabled));
}

void SetPtpSlaveOnly(bool on) {
  Change(rpc::kSetPtpSlaveOnlyStatus, SwitchAction("PTP slave-only mode", on), ToStatus(on));
}

Json ToJson(const dapi::Channels& channels) {
  Json list = Json::array();
  for (const auto& it : channels.channels()) list.push_back({{"id", it.id()}, {"name", it.name()}});
  return list;
}

dapi::Channels ReadTxChannels() { return Read(rpc::kGetTxChannels, "list the transmit channels"); }

dapi::Channels ReadRxChannels() { return Read(rpc::kGetRxChannels, "list the receive channels"); }

void RenameTxChannel(std::int32_t id, const std::string& name) {
  Rename(id, name, "transmit", ReadTxChannels, rpc::kSetTxChannelName);
}

void RenameRxChannel(std::int32_t id, const std::string& name) {
  Rename(id, name, "receive", ReadRxChannels, rpc::kSetRxChannelName);
}

std::vector<dapi::LinkInfo> ReadRouting(const dapi::Channels& receivers) {
  std::vector<dapi::LinkInfo> links(static_cast<std::size_t>(receivers.channels_size()));
  Parallel(links.size(), [&](std::size_t i) {
    const dapi::Channel& channel = receivers.channels(static_cast<int>(i));
    links[i] =
        Read(rpc::kGetRxChannelLink,
             "read the subscription of receive channel " + std::to_string(channel.id()), channel);
    links[i].set_id(channel.id());
  });
  return links;
}

void SetSubscription(const dapi::LinkInfo& link) {
  const std::int32_t id = link.id();
  ChangeObject(
      {"channel list", [id] { return FindById(ReadRxChannels().channels(), id) != nullptr; }},
      rpc::kSetRxChannelLink, "set the subscription of receive channel " + std::to_string(id),
      link);
}

}  // namespace tool
