// The Python module networkgrpc.dante: the functions of DantegRPC.
#include "DantegRPC.h"

#include "python/call.h"

namespace {

using python::Field;
using Argument = pybind11::arg;
using Channel = DantegRPC::Channel;
using ChannelLink = DantegRPC::ChannelLink;

// Both results of the one function that has two.
struct ChannelsNum {
  int tx = 0;
  int rx = 0;
};

bool GetChannelsNum(ChannelsNum& number) { return DantegRPC::GetChannelsNum(number.tx, number.rx); }

void DefineRecords(pybind11::module_& module) {
  python::Define<Channel>(module, "Channel", Field("id", &Channel::id),
                          Field("name", &Channel::name));
  python::Define<ChannelLink>(
      module, "ChannelLink", Field("rx_channel_id", &ChannelLink::rxChannelId),
      Field("channel_name", &ChannelLink::channelName),
      Field("device_name", &ChannelLink::deviceName), Field("is_raw", &ChannelLink::isRaw),
      Field("ip", &ChannelLink::ip), Field("value2", &ChannelLink::value2),
      Field("value3", &ChannelLink::value3), Field("value4", &ChannelLink::value4),
      Field("value5", &ChannelLink::value5), Field("value6", &ChannelLink::value6),
      Field("encoding", &ChannelLink::encoding), Field("sip", &ChannelLink::sip),
      Field("has_session_id", &ChannelLink::hasSessionId),
      Field("session_id", &ChannelLink::sessionId));
  python::Define<ChannelsNum>(module, "ChannelsNum", Field("tx", &ChannelsNum::tx),
                              Field("rx", &ChannelsNum::rx));
}

void DefineSettings(const python::Functions& functions) {
  functions.Reads("get_name", &DantegRPC::GetName)
      .Changes("set_name", &DantegRPC::SetName, Argument("name"))
      .Reads("get_firmware_version", &DantegRPC::GetFirmwareVersion)
      .Reads("get_software_version", &DantegRPC::GetSoftwareVersion)
      .Reads("get_model_name", &DantegRPC::GetModelName)
      .Reads("get_model_version", &DantegRPC::GetModelVersion)
      .Reads("get_available_sample_rates", &DantegRPC::GetAvailableSampleRates)
      .Reads("get_sample_rate", &DantegRPC::GetSampleRate)
      .Changes("set_sample_rate", &DantegRPC::SetSampleRate, Argument("rate"))
      .Reads("get_latency", &DantegRPC::GetLatency)
      .Changes("set_latency", &DantegRPC::SetLatency, Argument("latency"))
      .Reads("get_aes67_available", &DantegRPC::GetAES67Available)
      .Reads("get_aes67_status", &DantegRPC::GetAES67Status)
      .Changes("set_aes67", &DantegRPC::SetAES67, Argument("enabled"))
      .Reads("get_disable_tx", &DantegRPC::GetDisableTx)
      .Changes("set_disable_tx", &DantegRPC::SetDisableTx, Argument("disabled"))
      .Reads("get_ptp_slave_only", &DantegRPC::GetPtpSlaveOnly)
      .Changes("set_ptp_slave_only", &DantegRPC::SetPtpSlaveOnly, Argument("slave_only"))
      .Changes("reboot", &DantegRPC::Reboot);
}

void DefineChannels(const python::Functions& functions) {
  functions.Reads("get_tx_channels", &DantegRPC::GetTxChannels)
      .Reads("get_rx_channels", &DantegRPC::GetRxChannels)
      .Reads("get_channels_num", &GetChannelsNum)
      .Changes("set_tx_channel_name", &DantegRPC::SetTxChannelName, Argument("channel"))
      .Reads("get_tapping", &DantegRPC::GetTapping)
      .Changes("set_tapping", &DantegRPC::SetTapping, Argument("link"));
}

}  // namespace

PYBIND11_MODULE(dante, module) {
  module.doc() = python::Doc("");
  DefineRecords(module);
  const python::Functions functions(module);
  DefineSettings(functions);
  DefineChannels(functions);
}
