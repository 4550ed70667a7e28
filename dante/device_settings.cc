// The Dante module's identity and audio settings.
#include <utility>

#include "DantegRPC.h"
#include "client/DAPIClient.h"
#include "client/NetworkManagerClient.h"
#include "facade/frame.h"

using facade::ExceptionLine;
using ostrevan::grpcdapi::AvailableSampleRates;
using ostrevan::grpcdapi::Latency;
using ostrevan::grpcdapi::Name;
using ostrevan::grpcdapi::SampleRate;
using ostrevan::grpcdapi::Status;
using ostrevan::grpcdapi::Version;

bool DantegRPC::GetName(std::string& name) {
  return facade::Read({"GetName", ExceptionLine::kNameAndText}, &DAPIClient::GetName,
                      facade::kNoLine,
                      [&](Name& reply) { name = std::move(*reply.mutable_name()); });
}

bool DantegRPC::SetName(const std::string& name) {
  return facade::Change({"SetName", ExceptionLine::kNameAndText}, &DAPIClient::SetName,
                        "libNetworkgRPC: ERROR: error while setting dante name in %s\n",
                        [&](Name& request) { request.set_name(name); });
}

bool DantegRPC::GetFirmwareVersion(std::string& version) {
  return facade::Read({"GetFirmwareVersion", ExceptionLine::kNameAndText},
                      &DAPIClient::GetFirmwareVersion, facade::kNoLine,
                      [&](Version& reply) { version = std::move(*reply.mutable_version()); });
}

bool DantegRPC::GetSoftwareVersion(std::string& version) {
  return facade::Read({"GetSoftwareVersion", ExceptionLine::kNameAndText},
                      &DAPIClient::GetSoftwareVersion, facade::kNoLine,
                      [&](Version& reply) { version = std::move(*reply.mutable_version()); });
}

bool DantegRPC::GetModelName(std::string& name) {
  return facade::Read({"GetModelName", ExceptionLine::kNameAndText}, &DAPIClient::GetModelName,
                      facade::kNoLine,
                      [&](Name& reply) { name = std::move(*reply.mutable_name()); });
}

bool DantegRPC::GetModelVersion(std::string& version) {
  return facade::Read({"GetModelVersion", ExceptionLine::kNameAndText},
                      &DAPIClient::GetModelVersion, facade::kNoLine,
                      [&](Version& reply) { version = std::move(*reply.mutable_version()); });
}

// One insertion of the whole list: it is appended entirely or not at all.
bool DantegRPC::GetAvailableSampleRates(std::vector<int>& rates) {
  return facade::Read(
      {"GetAvailableSampleRates", ExceptionLine::kNameOnly}, &DAPIClient::GetAvailableSampleRates,
      "libNetworkgRPC: ERROR: error while requesting available or current sample rate in %s\n",
      [&](const AvailableSampleRates& reply) {
        rates.insert(rates.end(), reply.samplerates().begin(), reply.samplerates().end());
      });
}

bool DantegRPC::GetSampleRate(int& rate) {
  return facade::Read(
      {"GetSampleRate", ExceptionLine::kNameOnly}, &DAPIClient::GetSampleRate,
      "libNetworkgRPC: ERROR: error while requesting available or current sample rate in %s\n",
      [&](const SampleRate& reply) { rate = static_cast<int>(reply.samplerate()); });
}

bool DantegRPC::SetSampleRate(int rate) {
  return facade::Change(
      {"SetSampleRate", ExceptionLine::kNameAndText}, &DAPIClient::SetSampleRate,
      "libNetworkgRPC: ERROR: error while setting sample rate in %s\n",
      [&](SampleRate& request) { request.set_samplerate(static_cast<std::uint32_t>(rate)); });
}

bool DantegRPC::GetLatency(int& latency) {
  return facade::Read({"GetLatency", ExceptionLine::kNameOnly}, &DAPIClient::GetLatency,
                      "libNetworkgRPC: ERROR: error while requesting latency in %s\n",
                      [&](const Latency& reply) { latency = static_cast<int>(reply.latency()); });
}

bool DantegRPC::SetLatency(int latency) {
  return facade::Change(
      {"SetLatency", ExceptionLine::kNameAndText}, &DAPIClient::SetLatency,
      "libNetworkgRPC: ERROR: error while setting latency in %s\n",
      [&](Latency& request) { request.set_latency(static_cast<std::uint32_t>(latency)); });
}

bool DantegRPC::GetAES67Available(bool& available) {
  return facade::Read(
      {"GetAES67Available", ExceptionLine::kNameOnly}, &DAPIClient::GetIsAES67Available,
      "libNetworkgRPC: ERROR: error while requesting available or status AES67 in %s\n",
      [&](const Status& reply) { available = reply.status(); });
}

bool DantegRPC::GetAES67Status(bool& enabled) {
  return facade::Read(
      {"GetAES67Status", ExceptionLine::kNameOnly}, &DAPIClient::GetAES67Status,
      "libNetworkgRPC: ERROR: error while requesting available or status AES67 in %s\n",
      [&](const Status& reply) { enabled = reply.status(); });
}

bool DantegRPC::SetAES67(bool enabled) {
  return facade::Change({"SetAES67", ExceptionLine::kNameAndText}, &DAPIClient::SetAES67Status,
                        "libNetworkgRPC: ERROR: error while setting aes67 status in %s\n",
                        [&](Status& request) { request.set_status(enabled); });
}

bool DantegRPC::GetDisableTx(bool& disabled) {
  return facade::Read({"GetDisableTx", ExceptionLine::kNameOnly, &disabled},
                      &DAPIClient::GetDisableTxStatus,
                      "libNetworkgRPC: ERROR: get disable tx error %s\n",
                      [&](const Status& reply) { disabled = reply.status(); });
}

bool DantegRPC::SetDisableTx(bool disabled) {
  return facade::Change({"SetDisableTx", ExceptionLine::kNameOnly}, &DAPIClient::SetDisableTxStatus,
                        "libNetworkgRPC: ERROR: set disable tx error %s\n",
                        [&](Status& request) { request.set_status(disabled); });
}

bool DantegRPC::GetPtpSlaveOnly(bool& slave_only) {
  return facade::Read({"GetPtpSlaveOnly", ExceptionLine::kNameOnly, &slave_only},
                      &DAPIClient::GetPtpSlaveOnlyStatus,
                      "libNetworkgRPC: ERROR: get ptp slave only error %s\n",
                      [&](const Status& reply) { slave_only = reply.status(); });
}

bool DantegRPC::SetPtpSlaveOnly(bool slave_only) {
  return facade::Change({"SetPtpSlaveOnly", ExceptionLine::kNameOnly},
                        &DAPIClient::SetPtpSlaveOnlyStatus,
                        "libNetworkgRPC: ERROR: set ptp slave only error %s\n",
                        [&](Status& request) { request.set_status(slave_only); });
}

// The module starts anew when the host's network does, so this is the one
// function here that asks the network manager.
bool DantegRPC::Reboot() {
  return facade::Change({"Reboot", ExceptionLine::kNameAndText},
                        &NetworkManagerClient::ReloadNetworkConfig,
                        "libNetworkgRPC: ERROR: error while rebooting dante in %s\n");
}
