#include "examples/demo_changes.h"

#include <algorithm>
#include <array>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "examples/demo_overview.h"
#include "examples/step.h"

namespace demo {
namespace {

// Two of each, so that a second run changes something, too.
constexpr std::array<const char*, 2> kNames{"Bühne links", "Bühne rechts"};
constexpr std::array<const char*, 2> kAddresses{"192.168.10.20", "192.168.10.21"};
constexpr const char* kNetmask = "255.255.255.0";
constexpr const char* kGateway = "192.168.10.1";

std::string Other(const std::array<const char*, 2>& values, const std::string& present) {
  return present == values[0] ? values[1] : values[0];
}

std::string Quoted(const std::string& text) { return '"' + Printable(text) + '"'; }

void Verify(const std::string& step, const std::string& expected, const std::string& seen) {
  if (seen != expected) throw StepFailed(step, Quoted(expected), Quoted(seen));
}

// --- Transmit channel ----------------------------------------------------------

DantegRPC::Channel FirstTxChannel(const std::string& step) {
  std::vector<DantegRPC::Channel> channels;
  Require(DantegRPC::GetTxChannels(channels), step);
  if (channels.empty()) throw StepFailed(step, "a transmit channel", "none");
  return channels.front();
}

// Gives the new name.
std::string RenameTxChannel(Table& done) {
  const std::string step = "rename a transmit channel";
  const DantegRPC::Channel before = FirstTxChannel(step);
  const DantegRPC::Channel wanted{before.id, Other(kNames, before.name)};

  Require(DantegRPC::SetTxChannelName(wanted), step);

  Verify(step, wanted.name, FirstTxChannel(step).name);
  done.Add({"Name of transmit channel " + std::to_string(wanted.id), before.name, wanted.name});
  return wanted.name;
}

// --- Routing -------------------------------------------------------------------

DantegRPC::ChannelLink FirstLink(const std::string& step) {
  std::vector<DantegRPC::ChannelLink> links;
  Require(DantegRPC::GetTapping(links), step);
  if (links.empty()) throw StepFailed(step, "a receive channel", "none");
  return links.front();
}

void Subscribe(const std::string& channel_name, Table& done) {
  const std::string step = "subscribe a receive channel";
  const DantegRPC::ChannelLink before = FirstLink(step);
  DantegRPC::ChannelLink wanted;
  wanted.rxChannelId = before.rxChannelId;
  wanted.channelName = channel_name;
  Require(DantegRPC::GetName(wanted.deviceName), step);

  Require(DantegRPC::SetTapping(wanted), step);

  Verify(step, Source(wanted), Source(FirstLink(step)));
  done.Add({"Source of receive channel " + std::to_string(wanted.rxChannelId), Source(before),
            Source(wanted)});
}

// --- Control interface ---------------------------------------------------------

NetworkgRPC::InterfaceInfo ControlInterface(const std::string& step) {
  std::vector<NetworkgRPC::InterfaceInfo> interfaces;
  Require(NetworkgRPC::GetControlInterfacesInfo(interfaces), step);
  if (interfaces.empty()) throw StepFailed(step, "a control interface", "none");
  return interfaces.front();
}

std::string Addressing(const NetworkgRPC::InterfaceInfo& interface) {
  return interface.ip + ' ' + interface.netmask + (interface.mode == 1 ? " static" : " dynamic") +
         (interface.active ? "" : " not in use");
}

void SetControlAddress(Table& done) {
  const std::string step = "set the control interface's address";
  const NetworkgRPC::InterfaceInfo before = ControlInterface(step);
  NetworkgRPC::InterfaceInfo wanted;
  wanted.mode = 1;
  wanted.ip = Other(kAddresses, before.ip);
  wanted.netmask = kNetmask;
  wanted.gateway = kGateway;
  wanted.dns = kGateway;
  wanted.active = true;  // expected after the reload; the setter ignores it

  Require(NetworkgRPC::SetControlIP(wanted, true), step);

  Verify(step, Addressing(wanted), Addressing(ControlInterface(step)));
  done.Add({"Address of the control interface", Addressing(before), Addressing(wanted)});
}

}  // namespace

void MakeChanges(Table& done) {
  const std::string name = RenameTxChannel(done);
  Subscribe(name, done);
  SetControlAddress(done);
}

}  // namespace demo
