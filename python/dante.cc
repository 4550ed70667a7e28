// The module networkgrpc.dante: the functions of DantegRPC.
#include "DantegRPC.h"

#include "python/call.h"

namespace {

using python::Field;
using Argument = pybind11::arg;
using Channel = DantegRPC::Channel;
using ChannelLink = DantegRPC::ChannelLink;

void DefineRecords(pybind11::module_& module) {
  python::Define<Channel>(module, "Channel", "One transmit or receive channel.",
                          Field("id", &Channel::id), Field("name", &Channel::name));
  python::Define<ChannelLink>(
      module, "ChannelLink", "What one receive channel is subscribed to.",
      Field("rx_channel_id", &ChannelLink::rxChannelId),
      Field("channel_name", &ChannelLink::channelName),
      Field("device_name", &ChannelLink::deviceName), Field("is_raw", &ChannelLink::isRaw),
      Field("ip", &ChannelLink::ip), Field("value2", &ChannelLink::value2),
      Field("value3", &ChannelLink::value3), Field("value4", &ChannelLink::value4),
      Field("value5", &ChannelLink::value5), Field("value6", &ChannelLink::value6),
      Field("encoding", &ChannelLink::encoding), Field("sip", &ChannelLink::sip),
      Field("has_session_id", &ChannelLink::hasSessionId),
      Field("session_id", &ChannelLink::sessionId));
}

void DefineSettings(const python::Functions& functions) {
  functions.Reads("get_name", &DantegRPC::GetName, "The device name.")
      .Changes("set_name", &DantegRPC::SetName, "Sets the device name.", Argument("name"))
      .Reads("get_firmware_version", &DantegRPC::GetFirmwareVersion, "The firmware's version.")
      .Reads("get_software_version", &DantegRPC::GetSoftwareVersion, "The software's version.")
      .Reads("get_model_name", &DantegRPC::GetModelName, "The model's name.")
      .Reads("get_model_version", &DantegRPC::GetModelVersion, "The model's version.")
      .Reads("get_available_sample_rates", &DantegRPC::GetAvailableSampleRates,
             "The sample rates that the module supports.")
      .Reads("get_sample_rate", &DantegRPC::GetSampleRate, "The sample rate.")
      .Changes("set_sample_rate", &DantegRPC::SetSampleRate, "Sets the sample rate.",
               Argument("rate"))
      .Reads("get_latency", &DantegRPC::GetLatency, "The latency.")
      .Changes("set_latency", &DantegRPC::SetLatency, "Sets the latency.", Argument("latency"))
      .Reads("get_aes67_available", &DantegRPC::GetAES67Available,
             "Whether the module can do AES67.")
      .Reads("get_aes67_status", &DantegRPC::GetAES67Status, "Whether AES67 is on.")
      .Changes("set_aes67", &DantegRPC::SetAES67, "Turns AES67 on or off.", Argument("enabled"))
      .Reads("get_disable_tx", &DantegRPC::GetDisableTx, "Whether transmission is disabled.")
      .Changes("set_disable_tx", &DantegRPC::SetDisableTx, "Disables or enables transmission.",
               Argument("disabled"))
      .Reads("get_ptp_slave_only", &DantegRPC::GetPtpSlaveOnly,
             "Whether the module is a PTP slave only.")
      .Changes("set_ptp_slave_only", &DantegRPC::SetPtpSlaveOnly,
               "Makes the module a PTP slave only, or not.", Argument("slave_only"))
      .Changes("reboot", &DantegRPC::Reboot, "Restarts the Dante side.");
}

// The two counts of the one function that hands out two values.
struct ChannelsNum {
  int tx = 0;
  int rx = 0;
};

bool GetChannelsNum(ChannelsNum& number) { return DantegRPC::GetChannelsNum(number.tx, number.rx); }

void DefineChannels(pybind11::module_& module) {
  python::Define<ChannelsNum>(module, "ChannelsNum", "How many channels there are.",
                              Field("tx", &ChannelsNum::tx), Field("rx", &ChannelsNum::rx));
  python::Functions(module)
      .Reads("get_tx_channels", &DantegRPC::GetTxChannels, "The transmit channels.")
      .Reads("get_rx_channels", &DantegRPC::GetRxChannels, "The receive channels.")
      .Reads("get_channels_num", &GetChannelsNum, "How many channels there are.")
      .Changes("set_tx_channel_name", &DantegRPC::SetTxChannelName, "Renames a transmit channel.",
               Argument("channel"))
      .Reads("get_tapping", &DantegRPC::GetTapping, "What each receive channel is subscribed to.")
      .Changes("set_tapping", &DantegRPC::SetTapping, "Subscribes one receive channel.",
               Argument("link"));
}

}  // namespace

PYBIND11_MODULE(dante, module) {
  module.doc() = "The Dante module: name, sample rate, latency, flags, channels, routing.";
  DefineRecords(module);
  DefineSettings(python::Functions(module));
  DefineChannels(module);
}
