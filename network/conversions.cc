#include "network/conversions.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace nm = ostrevan::networkmanager;

namespace network {
namespace {

constexpr std::int32_t kDynamic = nm::DYNAMIC;
constexpr std::int32_t kStatic = nm::STATIC;

// Applications know two modes; the daemon's other two are kinds of dynamic.
std::int32_t ModeToRecord(nm::EnInterfaceMode mode) {
  return mode == nm::STATIC ? kStatic : kDynamic;
}

// For a single look-up: allocates nothing.
template <class List>
auto FindFirst(const List& entries, std::int32_t id) -> decltype(&*entries.begin()) {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [id](const auto& entry) { return entry.id() == id; });
  return found != entries.end() ? &*found : nullptr;
}

// For many look-ups: an index sorted by id, entries with equal ids in the order of
// the list. Daemons usually send entries sorted by id and they are looked up in that
// order: then the index needs no sorting, and each look-up finds its entry next to
// the previous one.
template <class List>
class FirstById {
 public:
  explicit FirstById(const List& entries) : list(entries) {
    places.reserve(static_cast<std::size_t>(list.size()));
    for (int at = 0; at < list.size(); ++at) places.emplace_back(list[at].id(), at);
    if (!std::is_sorted(places.begin(), places.end())) std::sort(places.begin(), places.end());
    next = places.begin();
  }

  auto Find(std::int32_t id) -> decltype(&*std::declval<const List&>().begin()) {
    if (!NextIsFirstOf(id)) next = std::lower_bound(places.begin(), places.end(), Place(id, 0));
    return next != places.end() && next->first == id ? &list[(next++)->second] : nullptr;
  }

 private:
  using Place = std::pair<std::int32_t, int>;  // id, index in the list

  bool NextIsFirstOf(std::int32_t id) const {
    return next != places.end() && next->first == id &&
           (next == places.begin() || std::prev(next)->first != id);
  }

  const List& list;
  std::vector<Place> places;
  typename std::vector<Place>::const_iterator next;
};

template <class Source>
void CopyAddress(const Source& source, NetworkgRPC::InterfaceInfo& record) {
  record.ip = source.ip();
  record.netmask = source.netmask();
}

}  // namespace

bool fillInterfaceInfo(std::int32_t id, NetworkgRPC::InterfaceInfo& record,
                       const nm::InterfacesConfig& config, const nm::InterfacesStatus& status) {
  const nm::InterfaceConfig* stored = FindFirst(config.configs(), id);
  const nm::InterfaceStatus* live = FindFirst(status.status(), id);
  if (stored == nullptr || live == nullptr) return false;

  record.active = live->flag4();
  record.mode = ModeToRecord(stored->mode());
  if (record.active) {
    CopyAddress(*live, record);
  } else if (record.mode == kStatic) {
    CopyAddress(*stored, record);
  }
  return true;
}

void AppendInterfaces(const nm::Interfaces& known, const nm::InterfacesConfig& config,
                      const nm::InterfacesStatus& status,
                      std::vector<NetworkgRPC::InterfaceInfo>& out) {
  FirstById stored_by_id(config.configs());
  FirstById live_by_id(status.status());

  // Reallocating while appending would cost more than everything else here.
  out.reserve(out.size() + static_cast<std::size_t>(known.interfaces_size()));
  for (const nm::Interface& interface : known.interfaces()) {
    NetworkgRPC::InterfaceInfo record;
    record.name = interface.name();
    record.mac = interface.mac();
    record.id = interface.id();
    if (const nm::InterfaceConfig* stored = stored_by_id.Find(record.id)) {
      record.mode = ModeToRecord(stored->mode());
      if (const nm::InterfaceStatus* live = live_by_id.Find(record.id)) {
        CopyAddress(*live, record);
        record.active = live->flag4();
      }
      if (record.ip.empty() && record.mode == kStatic) CopyAddress(*stored, record);
    }
    out.push_back(std::move(record));
  }
}

void ToWire(std::int32_t id, const NetworkgRPC::InterfaceInfo& record,
            nm::InterfaceConfig& request) {
  request.set_id(id);
  if (record.mode != kStatic || record.ip.empty() || record.netmask.empty()) {
    request.set_mode(nm::DYNAMIC);
    return;
  }
  request.set_mode(nm::STATIC);
  request.set_ip(record.ip);
  request.set_netmask(record.netmask);
  if (!record.gateway.empty()) request.set_gateway(record.gateway);
  if (!record.dns.empty()) request.add_dns(record.dns);
}

NetworkgRPC::SwitchMode ToRecord(const nm::SwitchMode& mode) { return {mode.id(), mode.name()}; }

}  // namespace network
