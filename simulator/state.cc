#include "simulator/state.h"

#include <limits>
#include <set>
#include <utility>

#include "simulator/state_members.h"
#include "state_document/save_file.h"

namespace simulator {
namespace {

using state_document::Document;

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

}  // namespace

void NumberInterfaces(const Json& entries, std::vector<Interface>& interfaces) {
  constexpr std::int32_t kLast = std::numeric_limits<std::int32_t>::max();
  std::set<std::int32_t> taken{0};
  for (const Json& entry : entries)
    if (entry.contains("id")) taken.insert(entry["id"].get<std::int32_t>());
  std::vector<std::size_t> unnumbered;
  for (std::size_t i = 0; i < interfaces.size(); ++i) {
    const std::int32_t id = interfaces[i].id;
    if (entries[i].contains("id")) continue;
    if (id == kNoInterface || !taken.insert(id).second) unnumbered.push_back(i);
  }
  std::int32_t next = *taken.rbegin();
  for (const std::size_t i : unnumbered) {
    do next = next < kLast ? next + 1 : 1;
    while (!taken.insert(next).second);
    interfaces[i].id = next;
    if (next < 10 && !entries[i].contains("mac"))
      interfaces[i].mac.back() = static_cast<char>('0' + next);
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

State ReadState(const state_document::Document& document, const State& defaults) {
  State state = defaults;
  Reader reader(document.Root());
  Members(reader, state);
  if (reader.Has("faults")) CheckFaults(document, state.faults);
  const std::string hostname = defaults.device.factory_network.hostname;
  state.device.factory_network = FactoryDefaultNetwork(state.device.network);
  state.device.factory_network.hostname = hostname;
  return state;
}

State ReadState(const std::string& text, const std::string& name, const State& defaults) {
  return ReadState(Document(text, name), defaults);
}

State LoadState(const std::string& file, const State& defaults) {
  return ReadState(state_document::ReadFile(file), defaults);
}

Json ToJson(State state) {
  Writer writer;
  Members(writer, state);
  return writer.Take();
}

std::string WriteState(State state) { return state_document::ToText(ToJson(std::move(state))); }

void SaveState(const std::string& file, const State& state) {
  state_document::SaveFile(file, WriteState(state));
}

}  // namespace simulator
