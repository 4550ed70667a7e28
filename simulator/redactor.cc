#include "simulator/redactor.h"

#include <arpa/inet.h>

#include <array>
#include <cstdio>

namespace simulator {
namespace {

constexpr const char* kAddress = "198.18.";
constexpr const char* kMac = "02:00:00:";
constexpr const char* kName = "name-";
constexpr const char* kKey = "key-";

// What is in place of bytes that are no message, which cannot be redacted.
constexpr const char* kUnreadable =
    "\x0a\x7f"
    "redacted";

const std::map<std::string, const char*>& Kinds() {
  static const std::map<std::string, const char*> kinds{{"Interface.mac", kMac},
                                                        {"InterfaceConfig.ip", kAddress},
                                                        {"InterfaceConfig.gateway", kAddress},
                                                        {"InterfaceConfig.dns", kAddress},
                                                        {"InterfaceWifiConfig.ssid", kKey},
                                                        {"InterfaceWifiConfig.password", kKey},
                                                        {"InterfaceStatus.ip", kAddress},
                                                        {"Hostname.hostname", kName},
                                                        {"NTPServer.servers", kAddress},
                                                        {"Routing.gateway", kAddress},
                                                        {"DNS.dns", kAddress},
                                                        {"Name.name", kName},
                                                        {"Channel.name", kName},
                                                        {"LinkInfo.deviceName", kName},
                                                        {"LinkInfo.channelName", kName},
                                                        {"rawLinkInfo.ip", kAddress},
                                                        {"rawLinkInfo.sip", kAddress}};
  return kinds;
}

bool IsAddress(const std::string& string) {
  in_addr address{};
  return inet_pton(AF_INET, string.c_str(), &address) == 1;
}

// The replacement with this number.
std::string Numbered(const std::string& kind, unsigned number) {
  std::array<char, 16> text{};
  if (kind == kMac) {
    std::snprintf(text.data(), text.size(), "%02x:%02x:%02x", number >> 16U & 255U,
                  number >> 8U & 255U, number & 255U);
  } else if (kind == kAddress) {
    std::snprintf(text.data(), text.size(), "%u.%u", number >> 8U & 255U, number & 255U);
  } else {
    return kind + std::to_string(number);
  }
  return kind + text.data();
}

}  // namespace

std::string Redactor::Request(const Method* method, const std::string& bytes) {
  return Rewritten(method, method != nullptr ? method->request : nullptr, bytes);
}

std::string Redactor::Reply(const Method* method, const std::string& bytes) {
  return Rewritten(method, method != nullptr ? method->reply : nullptr, bytes);
}

std::string Redactor::Rewritten(const Method* method, const wire_schema::WireMessage* type,
                                const std::string& bytes) {
  if (type == nullptr) return bytes.empty() ? "" : kUnreadable;
  return wire_schema::Rewrite(*type, bytes,
                              [&](const std::string& field, const std::string& value) {
                                return Field(method->name, field, value);
                              })
      .value_or(kUnreadable);
}

std::string Redactor::Field(const std::string& method, const std::string& field,
                            const std::string& value) {
  const auto found = Kinds().find(field);
  const bool is_product = method == "GetManufacturerName" || method == "GetModelName";
  if (found == Kinds().end() || is_product || value.empty() || value == "0.0.0.0") return value;
  const bool is_other_name = found->second == kAddress && !IsAddress(value);
  return Replaced(is_other_name ? kName : found->second, value);
}

std::string Redactor::Replaced(const std::string& kind, const std::string& value) {
  if (value.empty()) return value;
  std::map<std::string, std::string>& known = replacements[kind];
  const auto number = static_cast<unsigned>(known.size() + 1);
  return known.emplace(value, Numbered(kind, number)).first->second;
}

}  // namespace simulator
