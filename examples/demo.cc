// networkgrpc-demo: change three settings of a device, read each back and restore it.
// Do not run it on a device in use: a new latency may interrupt the audio.
//
// The endpoints come from the environment, as for every application of the library. Exit
// status: 0 if every new and every restored value was read back; otherwise 1, and the
// remaining settings are not changed.
#include <cctype>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"

namespace {

// The functions return false on failure; the library has then printed why.
template <class Value>
struct Setting {
  std::string name;
  std::function<bool(Value&)> read;
  std::function<bool(const Value&)> write;
  Value first;   // set, unless the setting has this value already;
  Value second;  // then this one is set
};

bool ReadFirstTxChannel(DantegRPC::Channel& channel) {
  std::vector<DantegRPC::Channel> channels;
  if (!DantegRPC::GetTxChannels(channels) || channels.empty()) return false;
  channel = channels.front();
  return true;
}

bool ReadLabel(std::string& label) {
  DantegRPC::Channel channel;
  if (!ReadFirstTxChannel(channel)) return false;
  label = channel.name;
  return true;
}

bool WriteLabel(const std::string& label) {
  DantegRPC::Channel channel;
  if (!ReadFirstTxChannel(channel)) return false;
  channel.name = label;
  return DantegRPC::SetTxChannelName(channel);
}

std::string Show(int value) { return std::to_string(value); }
std::string Show(std::string value) {
  // A control character could move the cursor of a terminal.
  for (char& byte : value)
    if (std::iscntrl(static_cast<unsigned char>(byte)) != 0) byte = '?';
  return '"' + value + '"';
}

template <class Value>
bool Fail(const Setting<Value>& setting, const std::string& problem) {
  std::cerr << "networkgrpc-demo: " << setting.name << ": " << problem << std::endl;
  return false;
}

template <class Value>
bool WriteAndReadBack(const Setting<Value>& setting, const Value& value) {
  if (!setting.write(value)) return Fail(setting, Show(value) + " cannot be set");
  Value seen{};
  if (!setting.read(seen)) return Fail(setting, "cannot be read back");
  std::cout << "  set to " << Show(value) << ", read back " << Show(seen) << std::endl;
  if (seen == value) return true;
  return Fail(setting, Show(value) + " was set, but " + Show(seen) + " was read back");
}

template <class Value>
bool ChangeAndRestore(const Setting<Value>& setting) {
  Value before{};
  if (!setting.read(before)) return Fail(setting, "cannot be read");
  std::cout << setting.name << ": " << Show(before) << std::endl;
  const bool changed =
      WriteAndReadBack(setting, before == setting.first ? setting.second : setting.first);
  // Also after a failure: a call may fail after the daemon has made the change.
  return WriteAndReadBack(setting, before) && changed;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) {
    std::cerr << "usage: " << argv[0] << "\nChange three settings of a device and restore them.\n";
    return 1;
  }
  const Setting<std::string> host_name{"Host name", NetworkgRPC::GetHostname,
                                       NetworkgRPC::SetHostname, "stage-left", "stage-right"};
  const Setting<std::string> label{"Label of the first transmit channel", ReadLabel, WriteLabel,
                                   "Bühne links", "Bühne rechts"};
  const Setting<int> latency{"Latency", DantegRPC::GetLatency, DantegRPC::SetLatency, 2000, 5000};
  return ChangeAndRestore(host_name) && ChangeAndRestore(label) && ChangeAndRestore(latency) ? 0
                                                                                             : 1;
}
