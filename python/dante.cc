// The Python module networkgrpc.dante: the functions of DantegRPC.
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
  functions.Reads("get_name", &DantegRPC::GetName, "Return the device name.")
      .Changes("set_name", &DantegRPC::SetName, "Set the device name.", Argument("name"))
      .Reads("get_firmware_version", &DantegRPC::GetFirmwareVersion, "Return the firmware version.")
      .Reads("get_software_version", &DantegRPC::GetSoftwareVersion, "Return the software version.")
      .Reads("get_model_name", &DantegRPC::GetModelName, "Return the model name.")
      .Reads("get_model_version", &DantegRPC::GetModelVersion, "Return the model version.")
      .Reads("get_available_sample_rates", &DantegRPC::GetAvailableSampleRates,
             "Return the supported sample rates.")
      .Reads("get_sample_rate", &DantegRPC::GetSampleRate, "Return the sample rate.")
      .Changes("set_sample_rate", &DantegRPC::SetSampleRate, "Set the sample rate.",
               Argument("rate"))
      .Reads("get_latency", &DantegRPC::GetLatency, "Return the latency.")
      .Changes("set_latency", &DantegRPC::SetLatency, "Set the latency.", Argument("latency"))
      .Reads("get_aes67_available", &DantegRPC::GetAES67Available,
             "Return whether the module supports AES67.")
      .Reads("get_aes67_status", &DantegRPC::GetAES67Status, "Return whether AES67 is on.")
      .Changes("set_aes67", &DantegRPC::SetAES67, "Turn AES67 on or off.", Argument("enabled"))
      .Reads("get_disable_tx", &DantegRPC::GetDisableTx, "Return whether transmission is disabled.")
      .Changes("set_disable_tx", &DantegRPC::SetDisableTx, "Disable or enable transmission.",
               Argument("disabled"))
      .Reads("get_ptp_slave_only", &DantegRPC::GetPtpSlaveOnly,
             "Return whether the module is PTP slave only.")
      .Changes("set_ptp_slave_only", &DantegRPC::SetPtpSlaveOnly,
               "Make the module PTP slave only, or allow it to become master.",
               Argument("slave_only"))
      .Changes("reboot", &DantegRPC::Reboot, "Restart the Dante side.");
}

// Both results of the one function that has two.
struct ChannelsNum {
  int tx = 0;
  int rx = 0;
};

bool GetChannelsNum(ChannelsNum& number) { return DantegRPC::GetChannelsNum(number.tx, number.rx); }

void DefineChannels(pybind11::module_& module) {
  python::Define<ChannelsNum>(module, "ChannelsNum", "The numbers of channels.",
                              Field("tx", &ChannelsNum::tx), Field("rx", &ChannelsNum::rx));
  python::Functions(module)
      .Reads("get_tx_channels", &DantegRPC::GetTxChannels, "Return the transmit channels.")
      .Reads("get_rx_channels", &DantegRPC::GetRxChannels, "Return the receive channels.")
      .Reads("get_channels_num", &GetChannelsNum,
             "Return the numbers of transmit and receive channels.")
      .Changes("set_tx_channel_name", &DantegRPC::SetTxChannelName,
               "Set the label of a transmit channel.", Argument("channel"))
      .Reads("get_tapping", &DantegRPC::GetTapping,
             "Return the subscription of every receive channel.")
      .Changes("set_tapping", &DantegRPC::SetTapping,
               "Change the subscription of one receive channel.", Argument("link"));
}

}  // namespace

PYBIND11_MODULE(dante, module) {
  module.doc() = "The Dante module: name, sample rate, latency, flags, channels, routing.";
  DefineRecords(module);
  DefineSettings(python::Functions(module));
  DefineChannels(module);
}
