#include "simulator/state.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <set>
#include <stdexcept>

#include "simulator/state_members.h"
#include "state_document/document.h"

namespace simulator {
namespace {

using state_document::Document;

[[noreturn]] void ThrowUnwritable(const std::string& file) {
  throw std::runtime_error("cannot write " + file + ": " + std::strerror(errno));
}

// The document knows the words for a fault, but not the methods.
void CheckFaults(const Document& document, const std::vector<Fault>& faults) {
  for (std::size_t i = 0; i < faults.size(); ++i) {
    try {
      Check(faults[i]);
    } catch (const BadFault& bad) {
      document.Reject("faults", i, bad.what());
    }
  }
}

State FromDocument(const Document& document, const State& defaults) {
  State state = defaults;
  Reader reader(document.Root());
  Members(reader, state);
  if (reader.Has("faults")) CheckFaults(document, state.faults);
  const std::string hostname = defaults.device.factory_network.hostname;
  state.device.factory_network = FactoryDefaultNetwork(state.device.network);
  state.device.factory_network.hostname = hostname;
  return state;
}

// What becomes the file once it is complete.
std::string Fresh(const std::string& file) { return file + ".new"; }

}  // namespace

void NumberInterfaces(const Json& entries, std::vector<Interface>& interfaces) {
  constexpr std::int32_t kLast = std::numeric_limits<std::int32_t>::max();
  std::set<std::int32_t> taken{0};
  for (const Json& entry : entries)
    if (entry.contains("id")) taken.insert(entry["id"].get<std::int32_t>());
  for (std::size_t i = 0; i < interfaces.size(); ++i)
    if (!entries[i].contains("id") && !taken.insert(interfaces[i].id).second)
      interfaces[i].id = kNoInterface;
  std::int32_t next = *taken.rbegin();
  for (std::size_t i = 0; i < interfaces.size(); ++i) {
    Interface& interface = interfaces[i];
    if (interface.id != kNoInterface) continue;
    do next = next < kLast ? next + 1 : 1;
    while (!taken.insert(next).second);
    interface.id = next;
    if (next < 10 && !entries[i].contains("mac"))
      interface.mac.back() = static_cast<char>('0' + next);
  }
}

std::vector<Route> Routes(const Dante& dante) {
  std::vector<Route> routes;
  for (const Channel& channel : dante.rx) {
    const auto link = dante.links.find(channel.id);
    routes.push_back({channel.id, link != dante.links.end() ? link->second : Link{}});
  }
  return routes;
}

void SetRoutes(const std::vector<Route>& routes, Dante& dante) {
  dante.links.clear();
  for (const Route& route : routes)
    if (route.link.raw.has_value() || !route.link.device_name.empty())
      dante.links[route.rx_channel] = route.link;
}

State ReadState(const std::string& text, const std::string& name, const State& defaults) {
  return FromDocument(Document(text, name), defaults);
}

State LoadState(const std::string& file, const State& defaults) {
  return FromDocument(state_document::ReadFile(file), defaults);
}

std::string WriteState(State state) {
  Writer writer;
  Members(writer, state);
  return state_document::ToText(writer.Take());
}

void CheckSavable(const std::string& file) {
  struct stat found {};
  if (stat(file.c_str(), &found) == 0 && S_ISDIR(found.st_mode)) {
    errno = EISDIR;
    ThrowUnwritable(file);
  }
  const std::string fresh = Fresh(file);
  if (!std::ofstream(fresh, std::ios::binary | std::ios::trunc)) ThrowUnwritable(file);
  std::remove(fresh.c_str());
}

void SaveState(const std::string& file, const State& state) {
  const std::string fresh = Fresh(file);
  std::ofstream stream(fresh, std::ios::binary | std::ios::trunc);
  stream << WriteState(state);
  stream.close();
  if (!stream || std::rename(fresh.c_str(), file.c_str()) != 0) {
    const int error = errno;
    std::remove(fresh.c_str());
    errno = error;
    ThrowUnwritable(file);
  }
}

}  // namespace simulator
