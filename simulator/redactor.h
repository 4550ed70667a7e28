// Replaces names, addresses and wireless keys in messages. The same value has the same
// replacement wherever it is, so that what belongs together still does.
//
//   addresses   198.18.0.1, 198.18.0.2, ...  (RFC 2544); netmasks and 0.0.0.0 stay
//   MAC         02:00:00:00:00:01, ...
//   names       name-1, name-2, ...: of devices, channels, hosts, NTP servers
//   wireless    key-1, ...: SSID and password
//   messages    message-1, ...: of statuses
//
// Names of interfaces and switch modes, manufacturer, model, versions and factory labels
// of channels stay, and all numbers. Fields that the schemas do not have are left out.
#pragma once

#include <map>
#include <string>

#include "simulator/method_table.h"

namespace simulator {

class Redactor {
 public:
  std::string Request(const Method* method, const std::string& bytes);
  std::string Reply(const Method* method, const std::string& bytes);
  std::string Message(const std::string& message) { return Replaced("message-", message); }

 private:
  std::string Rewritten(const Method* method, const wire_schema::WireMessage* type,
                        const std::string& bytes);
  std::string Field(const std::string& method, const std::string& field, const std::string& value);
  std::string Replaced(const std::string& kind, const std::string& value);

  std::map<std::string, std::map<std::string, std::string>> replacements;  // by kind and value
};

}  // namespace simulator
