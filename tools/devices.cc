#include "tools/devices.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <map>
#include <sstream>

// NOLINTBEGIN(cppcoreguidelines-macro-usage): this is how toml++ is configured
#define TOML_HEADER_ONLY 1
#define TOML_ASSERT(condition) static_cast<void>(0)  // one fails for "[", then a zero byte
// NOLINTEND(cppcoreguidelines-macro-usage)
#include <toml++/toml.h>

#include "client/environment.h"
#include "state_document/document.h"
#include "terminal/table.h"
#include "tools/commands.h"
#include "tools/environment.h"
#include "tools/failure.h"

namespace tool {
namespace {

constexpr const char* kVariable = "NETWORKGRPC_DEVICES";
constexpr const char* kAll = "all";
using Devices = std::map<std::string, Device>;

// What may be missing, before what overrides it.
std::vector<std::string> DefaultFiles() {
  std::vector<std::string> files{"/etc/networkgrpc/devices.toml"};
  std::string folder = Variable("XDG_CONFIG_HOME");
  if (folder.empty() || folder[0] != '/') {
    const std::string home = Variable("HOME");
    if (home.empty()) return files;
    folder = home + "/.config";
  }
  files.push_back(folder + "/networkgrpc/devices.toml");
  return files;
}

/// One file.
class File {
 public:
  explicit File(std::string path) : name(std::move(path)) {}

  void ReadInto(Devices& devices, bool may_be_missing) const {
    if (may_be_missing && access(name.c_str(), F_OK) != 0 && errno == ENOENT) return;
    try {
      AddAll(toml::parse(Text()), devices);
    } catch (const toml::parse_error& error) {
      Throw(error.source(), std::string(error.description()));
    }
  }

 private:
  std::string Text() const {
    try {
      return state_document::ReadTextFile(name);
    } catch (const std::runtime_error& error) {
      throw Failure(ExitStatus::kFailed, error.what());
    }
  }

  [[noreturn]] void Throw(const toml::source_region& where, const std::string& what) const {
    throw Failure(ExitStatus::kFailed, name + ":" + std::to_string(where.begin.line) + ": " + what);
  }

  const toml::table& Table(const std::string& path, const toml::node& node) const {
    if (const toml::table* table = node.as_table()) return *table;
    Throw(node.source(), path + ": must be a table");
  }

  std::string String(const std::string& path, const toml::node& node) const {
    const auto value = node.value<std::string>();
    if (!node.is_string()) Throw(node.source(), path + ": must be a string");
    if (value->empty()) Throw(node.source(), path + ": must not be empty");
    return *value;
  }

  void AddAll(const toml::table& root, Devices& devices) const {
    for (const auto& [key, node] : root) {
      if (key != "devices")
        Throw(key.source(), std::string(key.str()) + ": unknown; only [devices.NAME] is known");
      for (const auto& [device, entry] : Table("devices", node)) {
        const std::string device_name(device.str());
        CheckName(device, device_name);
        devices[device_name] = Read(device_name, Table("devices." + device_name, entry));
      }
    }
  }

  void CheckName(const toml::key& key, const std::string& device) const {
    const auto is_plain = [](unsigned char it) {
      return std::isalnum(it) != 0 || it == '-' || it == '_' || it == '.';
    };
    if (device.empty() || device == kAll || !std::all_of(device.begin(), device.end(), is_plain))
      Throw(key.source(), "'" + device +
                              "' cannot name a device: use letters, digits, '-', '_' and '.', "
                              "and not 'all'");
  }

  Device Read(const std::string& device_name, const toml::table& entry) const {
    Device device = DeviceOf(device_name, "");
    device.file = name;
    for (const auto& [key, node] : entry) {
      const std::string path = "devices." + device_name + "." + std::string(key.str());
      if (key == "network_manager")
        device.network_manager = String(path, node);
      else if (key == "dapi")
        device.dapi = String(path, node);
      else if (key == "host")
        device.host = Host(path, node);
      else
        Throw(key.source(), path + ": unknown; network_manager, dapi and host are known");
    }
    return device;
  }

  std::string Host(const std::string& path, const toml::node& node) const {
    std::string host = String(path, node);
    try {
      CheckHost(host);
    } catch (const Failure& failure) {
      Throw(node.source(), path + ": " + failure.message);
    }
    return host;
  }

  const std::string name;
};

Json ListDevices(const std::vector<Device>& devices) {
  Json list = Json::array();
  for (const Device& it : devices)
    list.push_back({{"name", it.name},
                    {"network_manager", it.network_manager},
                    {"dapi", it.dapi},
                    {"host", it.host},
                    {"file", it.file}});
  return {{"devices", list}};
}

std::string ShowDevices(const Json& result) {
  terminal::Table table({"NAME", "NETWORK-MANAGER", "DAPI", "HOST", "FILE"});
  for (const Json& it : result["devices"])
    table.Add({it["name"], it["network_manager"], it["dapi"], it["host"], it["file"]});
  return table.Text();
}

}  // namespace

Device DeviceOf(const std::string& name, const std::string& host) {
  return {name, client::kNetworkManagerUrl.fallback, client::kDapiUrl.fallback, host, ""};
}

void CheckHost(const std::string& host) {
  const auto is_odd = [](unsigned char it) { return std::isspace(it) != 0 || it < ' '; };
  if (host.empty() || host[0] == '-' || std::any_of(host.begin(), host.end(), is_odd))
    throw Failure(ExitStatus::kUsage, "'" + host + "' is not [USER@]HOST");
}

std::vector<Device> ReadDevices() {
  Devices devices;
  const char* file = std::getenv(kVariable);
  if (file == nullptr)
    for (const std::string& it : DefaultFiles()) File(it).ReadInto(devices, true);
  else if (*file != '\0')
    File(file).ReadInto(devices, false);
  std::vector<Device> list;
  for (const auto& [name, device] : devices) list.push_back(device);
  return list;
}

std::vector<Device> FindDevices(const std::string& names) {
  const std::vector<Device> all = ReadDevices();
  if (names == kAll && !all.empty()) return all;
  std::vector<Device> found;
  std::stringstream list(names + ",");
  for (std::string name; std::getline(list, name, ',');) {
    const auto is_named = [&](const Device& it) { return it.name == name; };
    if (std::any_of(found.begin(), found.end(), is_named)) continue;
    const auto device = std::find_if(all.begin(), all.end(), is_named);
    if (device == all.end())
      throw Failure(ExitStatus::kNotFound,
                    "no device is named '" + name + "'; see 'networkgrpc devices'");
    found.push_back(*device);
  }
  return found;
}

void AddDevices(Tool& tool) {
  tool.AddVerb(tool.Top(), "devices",
               {"List the devices that --on can name",
                [] { return ListDevices(ReadDevices()); },
                ShowDevices,
                {"networkgrpc devices"}});
}

}  // namespace tool
