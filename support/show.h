// Outputs of the library as strings, so that one comparison covers all of them.
#pragma once

#include <string>
#include <vector>

#include "DantegRPC.h"
#include "NetworkgRPC.h"
#include "NetworkgRPC_c.h"

namespace support {

std::string Show(const std::string& text);
std::string Show(int number);
std::string Show(bool flag);
std::string Show(const NetworkgRPC::InterfaceInfo& record);
std::string Show(const NetworkgRPC::SwitchMode& record);
std::string Show(const DantegRPC::Channel& record);
std::string Show(const DantegRPC::ChannelLink& record);
std::string Show(const cInterfaceInfo& entry);

template <class Element>
std::string Show(const std::vector<Element>& list) {
  std::string text = "[";
  for (const Element& element : list) text += Show(element);
  return text + "]";
}

}  // namespace support
