// The Dante module's identity and audio settings.
#include <utility>

#include "DAPIClient.h"
#include "DantegRPC.h"
#include "NetworkManagerClient.h"
#include "call_frame/call_frame.h"

namespace dapi = ostrevan::grpcdapi;
using call_frame::ExceptionLine;

bool DantegRPC::GetName(std::string& name) {
  return call_frame::Read({"GetName", ExceptionLine::kNameAndText}, &DAPIClient::GetName,
                          call_frame::kNoLine,
                          [&](dapi::Name& reply) { name = std::move(*reply.mutable_name()); });
}

bool DantegRPC::SetName(const std::string& name) {
  return call_frame::Change({"SetName", ExceptionLine::kNameAndText}, &DAPIClient::SetName,
                            "libNetworkgRPC: ERROR: error while setting dante name in %s\n",
                            [&](dapi::Name& request) { request.set_name(name); });
}

bool DantegRPC::GetFirmwareVersion(std::string& version) {
  return call_frame::Read(
      {"GetFirmwareVersion", ExceptionLine::kNameAndText}, &DAPIClient::GetFirmwareVersion,
      call_frame::kNoLine,
      [&](dapi::Version& reply) { version = std::move(*reply.mutable_version()); });
}

bool DantegRPC::GetSoftwareVersion(std::string& version) {
  return call_frame::Read(
      {"GetSoftwareVersion", ExceptionLine::kNameAndText}, &DAPIClient::GetSoftwareVersion,
      call_frame::kNoLine,
      [&](dapi::Version& reply) { version = std::move(*reply.mutable_version()); });
}

bool DantegRPC::GetModelName(std::string& name) {
  return call_frame::Read({"GetModelName", ExceptionLine::kNameAndText}, &DAPIClient::GetModelName,
                          call_frame::kNoLine,
                          [&](dapi::Name& reply) { name = std::move(*reply.mutable_name()); });
}

bool DantegRPC::GetModelVersion(std::string& version) {
  return call_frame::Read(
      {"GetModelVersion", ExceptionLine::kNameAndText}, &DAPIClient::GetModelVersion,
      call_frame::kNoLine,
      [&](dapi::Version& reply) { version = std::move(*reply.mutable_version()); });
}

// One insertion, so that either all rates or none are appended.
bool DantegRPC::GetAvailableSampleRates(std::vector<int>& rates) {
  return call_frame::Read(
      {"GetAvailableSampleRates", ExceptionLine::kNameOnly}, &DAPIClient::GetAvailableSampleRates,
      "libNetworkgRPC: ERROR: error while requesting available or current sample rate in %s\n",
      [&](const dapi::AvailableSampleRates& reply) {
        rates.insert(rates.end(), reply.samplerates().begin(), reply.samplerates().end());
      });
}

bool DantegRPC::GetSampleRate(int& rate) {
  return call_frame::Read(
      {"GetSampleRate", ExceptionLine::kNameOnly}, &DAPIClient::GetSampleRate,
      "libNetworkgRPC: ERROR: error while requesting available or current sample rate in %s\n",
      [&](const dapi::SampleRate& reply) { rate = static_cast<int>(reply.samplerate()); });
}

bool DantegRPC::SetSampleRate(int rate) {
  return call_frame::Change(
      {"SetSampleRate", ExceptionLine::kNameAndText}, &DAPIClient::SetSampleRate,
      "libNetworkgRPC: ERROR: error while setting sample rate in %s\n",
      [&](dapi::SampleRate& request) { request.set_samplerate(static_cast<std::uint32_t>(rate)); });
}

bool DantegRPC::GetLatency(int& latency) {
  return call_frame::Read(
      {"GetLatency", ExceptionLine::kNameOnly}, &DAPIClient::GetLatency,
      "libNetworkgRPC: ERROR: error while requesting latency in %s\n",
      [&](const dapi::Latency& reply) { latency = static_cast<int>(reply.latency()); });
}

bool DantegRPC::SetLatency(int latency) {
  return call_frame::Change(
      {"SetLatency", ExceptionLine::kNameAndText}, &DAPIClient::SetLatency,
      "libNetworkgRPC: ERROR: error while setting latency in %s\n",
      [&](dapi::Latency& request) { request.set_latency(static_cast<std::uint32_t>(latency)); });
}

bool DantegRPC::GetAES67Available(bool& available) {
  return call_frame::Read(
      {"GetAES67Available", ExceptionLine::kNameOnly}, &DAPIClient::GetIsAES67Available,
      "libNetworkgRPC: ERROR: error while requesting available or status AES67 in %s\n",
      [&](const dapi::Status& reply) { available = reply.status(); });
}

bool DantegRPC::GetAES67Status(bool& enabled) {
  return call_frame::Read(
      {"GetAES67Status", ExceptionLine::kNameOnly}, &DAPIClient::GetAES67Status,
      "libNetworkgRPC: ERROR: error while requesting available or status AES67 in %s\n",
      [&](const dapi::Status& reply) { enabled = reply.status(); });
}

bool DantegRPC::SetAES67(bool enabled) {
  return call_frame::Change({"SetAES67", ExceptionLine::kNameAndText}, &DAPIClient::SetAES67Status,
                            "libNetworkgRPC: ERROR: error while setting aes67 status in %s\n",
                            [&](dapi::Status& request) { request.set_status(enabled); });
}

bool DantegRPC::GetDisableTx(bool& disabled) {
  return call_frame::Read({"GetDisableTx", ExceptionLine::kNameOnly, &disabled},
                          &DAPIClient::GetDisableTxStatus,
                          "libNetworkgRPC: ERROR: get disable tx error %s\n",
                          [&](const dapi::Status& reply) { disabled = reply.status(); });
}

bool DantegRPC::SetDisableTx(bool disabled) {
  return call_frame::Change({"SetDisableTx", ExceptionLine::kNameOnly},
                            &DAPIClient::SetDisableTxStatus,
                            "libNetworkgRPC: ERROR: set disable tx error %s\n",
                            [&](dapi::Status& request) { request.set_status(disabled); });
}

bool DantegRPC::GetPtpSlaveOnly(bool& slave_only) {
  return call_frame::Read({"GetPtpSlaveOnly", ExceptionLine::kNameOnly, &slave_only},
                          &DAPIClient::GetPtpSlaveOnlyStatus,
                          "libNetworkgRPC: ERROR: get ptp slave only error %s\n",
                          [&](const dapi::Status& reply) { slave_only = reply.status(); });
}

bool DantegRPC::SetPtpSlaveOnly(bool slave_only) {
  return call_frame::Change({"SetPtpSlaveOnly", ExceptionLine::kNameOnly},
                            &DAPIClient::SetPtpSlaveOnlyStatus,
                            "libNetworkgRPC: ERROR: set ptp slave only error %s\n",
                            [&](dapi::Status& request) { request.set_status(slave_only); });
}

// The module restarts together with the host's network, so this is the one
// function here that calls the network manager.
bool DantegRPC::Reboot() {
  return call_frame::Change({"Reboot", ExceptionLine::kNameAndText},
                            &NetworkManagerClient::ReloadNetworkConfig,
                            "libNetworkgRPC: ERROR: error while rebooting dante in %s\n");
}
