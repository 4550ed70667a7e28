#include "simulator/state.h"

#include <sys/stat.h>

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

// What becomes the file once it is complete.
std::string Fresh(const std::string& file) { return file + ".new"; }

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
    const Link& link = routes[i].link;
    // A real device may know encodings that this one refuses to be set to.
    if (link.raw.has_value() && !link.raw->ip.empty())
      dante.links[routes[i].rx_channel] = link;
    else if (!SetLink(dante, routes[i].rx_channel, link))
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
  std::string text;
  try {
    text.assign(std::istreambuf_iterator<char>(stream), {});
  } catch (const std::ios_base::failure&) {  // from the buffer: the stream throws nothing
    Throw("read", file);
  }
  return ReadState(text, file, defaults);
}

void CheckSavable(const std::string& file) {
  struct stat found {};
  if (stat(file.c_str(), &found) == 0 && S_ISDIR(found.st_mode)) {
    errno = EISDIR;
    Throw("write", file);
  }
  const std::string fresh = Fresh(file);
  if (!std::ofstream(fresh, std::ios::binary | std::ios::trunc)) Throw("write", file);
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
    Throw("write", file);
  }
}

}  // namespace simulator
