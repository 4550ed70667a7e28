#include "simulator/state.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "simulator/dante_rules.h"
#include "simulator/state_members.h"

namespace simulator {
namespace {

[[noreturn]] void Throw(const std::string& what, const std::string& file) {
  throw std::runtime_error("cannot " + what + ' ' + file + ": " + std::strerror(errno));
}

}  // namespace

void NumberInterfaces(std::vector<Interface>& interfaces) {
  std::int32_t next = 1;
  for (const Interface& interface : interfaces) next = std::max(next, interface.id + 1);
  for (Interface& interface : interfaces)
    if (interface.id == kNoInterface) {
      interface.id = next++;
      if (interface.id < 10) interface.mac.back() = static_cast<char>('0' + interface.id);
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

void SetRoutes(const Reader& reader, const std::vector<Route>& routes, Dante& dante) {
  RefuseTwins(reader, "routing", routes, &Route::rx_channel);
  // A device that is not a simulated one has as many channels as it routes.
  if (!reader.Has("rx_channels")) {
    dante.rx.clear();
    for (const Route& route : routes) dante.rx.push_back(FactoryChannel(route.rx_channel));
  }
  dante.links.clear();
  for (std::size_t i = 0; i < routes.size(); ++i) {
    const std::string entry = EntryPath("routing", i);
    if (!HasRxChannel(dante, routes[i].rx_channel))
      reader.Refuse(entry, "is for a receive channel that there is not");
    if (!SetLink(dante, routes[i].rx_channel, routes[i].link))
      reader.Refuse(entry, "needs both device and channel, or a raw stream with an ip");
  }
}

State ReadState(const std::string& text, const std::string& name, const State& defaults) {
  const Document document(text, name);
  State state = defaults;
  Reader reader(document, document.Root(), "");
  Members(reader, state);
  reader.RefuseUnknownMembers();
  const std::string hostname = defaults.device.factory_network.hostname;
  state.device.factory_network = FactoryReset(state.device.network);
  state.device.factory_network.hostname = hostname;
  return state;
}

std::string WriteState(State state) {
  Writer writer;
  Members(writer, state);
  // A test may have put bytes into the model that are no UTF-8.
  return writer.Take().dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

State LoadState(const std::string& file, const State& defaults) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) Throw("read", file);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (stream.bad()) Throw("read", file);
  return ReadState(text, file, defaults);
}

void SaveState(const std::string& file, const State& state) {
  const std::string fresh = file + ".new";
  std::ofstream stream(fresh, std::ios::binary | std::ios::trunc);
  stream << WriteState(state);
  stream.close();
  if (!stream || std::rename(fresh.c_str(), file.c_str()) != 0) {
    const int error = errno;
    std::remove(fresh.c_str());
    errno = error;
    Throw("write", file);
  }
}

}  // namespace simulator
