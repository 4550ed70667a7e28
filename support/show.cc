#include "support/show.h"

#include <sstream>

namespace support {

std::string Show(const std::string& text) { return '"' + text + '"'; }

std::string Show(int number) { return '(' + std::to_string(number) + ')'; }

std::string Show(bool flag) { return flag ? "true" : "false"; }

std::string Show(const NetworkgRPC::InterfaceInfo& record) {
  std::ostringstream out;
  out << "{mode=" << record.mode << " name=" << record.name << " ip=" << record.ip
      << " netmask=" << record.netmask << " gateway=" << record.gateway << " mac=" << record.mac
      << " dns=" << record.dns << " active=" << record.active << " id=" << record.id << '}';
  return out.str();
}

std::string Show(const NetworkgRPC::SwitchMode& record) {
  return '{' + std::to_string(record.id) + ' ' + record.name + '}';
}

std::string Show(const DantegRPC::Channel& record) {
  return '{' + std::to_string(record.id) + ' ' + record.name + '}';
}

std::string Show(const DantegRPC::ChannelLink& record) {
  std::ostringstream out;
  out << "{rx=" << record.rxChannelId << " channel=" << record.channelName
      << " device=" << record.deviceName << " isRaw=" << record.isRaw << " ip=" << record.ip
      << " values=" << record.value2 << ',' << record.value3 << ',' << record.value4 << ','
      << record.value5 << ',' << record.value6 << " encoding=" << record.encoding
      << " sip=" << record.sip << " session=" << record.hasSessionId << ',' << record.sessionId
      << '}';
  return out.str();
}

std::string Show(const cInterfaceInfo& entry) {
  const std::string bytes(reinterpret_cast<const char*>(&entry), sizeof entry);
  std::string text = "<";
  for (const char c : bytes) text += c == '\0' ? '.' : c;
  return text + ">";
}

}  // namespace support
