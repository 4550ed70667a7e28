// Replies of the network-manager daemon converted to records, and records to requests.
//
// Input: one byte for an interface id, then the bytes of an Interfaces, an
// InterfacesConfig, an InterfacesStatus and a SwitchMode, each with its length.
#include <google/protobuf/stubs/logging.h>

#include "network/conversions.h"
#include "tests/fuzz/fuzz.h"

namespace {

namespace nm = ostrevan::networkmanager;
using Info = NetworkgRPC::InterfaceInfo;
using fuzz::Check;

struct Reply {
  nm::Interfaces known;
  nm::InterfacesConfig config;
  nm::InterfacesStatus status;
};

const nm::InterfaceConfig* Stored(const Reply& reply, std::int32_t id) {
  for (const auto& entry : reply.config.configs())
    if (entry.id() == id) return &entry;
  return nullptr;
}

const nm::InterfaceStatus* Live(const Reply& reply, std::int32_t id) {
  for (const auto& entry : reply.status.status())
    if (entry.id() == id) return &entry;
  return nullptr;
}

bool Same(const Info& a, const Info& b) {
  return a.mode == b.mode && a.name == b.name && a.ip == b.ip && a.netmask == b.netmask &&
         a.gateway == b.gateway && a.mac == b.mac && a.dns == b.dns && a.active == b.active &&
         a.id == b.id;
}

// A record in which a change of any field shows.
Info Marked() {
  Info record;
  record.mode = 77;
  record.name = "name";
  record.ip = "ip";
  record.netmask = "netmask";
  record.gateway = "gateway";
  record.mac = "mac";
  record.dns = "dns";
  record.id = 78;
  return record;
}

template <class Source>
void TakeAddress(const Source& source, Info& record) {
  record.ip = source.ip();
  record.netmask = source.netmask();
}

void CheckFill(std::int32_t id, const Reply& reply) {
  const auto* stored = Stored(reply, id);
  const auto* live = Live(reply, id);
  const bool described = stored != nullptr && live != nullptr;
  Info expected = Marked();
  if (described) {
    expected.active = live->flag4();
    expected.mode = stored->mode() == nm::STATIC ? 1 : 0;
    if (live->flag4()) {
      TakeAddress(*live, expected);
    } else if (expected.mode == 1) {
      TakeAddress(*stored, expected);
    }
  }
  Info record = Marked();
  const bool filled = network::fillInterfaceInfo(id, record, reply.config, reply.status);
  Check(filled == described, "fillInterfaceInfo returns whether both lists have the interface");
  Check(Same(record, expected), "fillInterfaceInfo fills exactly what is known");
}

Info Merged(const nm::Interface& interface, const Reply& reply) {
  Info record;
  record.name = interface.name();
  record.mac = interface.mac();
  record.id = interface.id();
  const auto* stored = Stored(reply, interface.id());
  if (stored == nullptr) return record;
  record.mode = stored->mode() == nm::STATIC ? 1 : 0;
  if (const auto* live = Live(reply, interface.id())) {
    TakeAddress(*live, record);
    record.active = live->flag4();
  }
  if (record.ip.empty() && record.mode == 1) TakeAddress(*stored, record);
  return record;
}

void CheckAppend(const Reply& reply) {
  std::vector<Info> records = {Marked()};
  network::AppendInterfaces(reply.known, reply.config, reply.status, records);
  Check(records.size() == 1 + static_cast<std::size_t>(reply.known.interfaces_size()),
        "one record per interface is appended");
  Check(Same(records[0], Marked()), "earlier records stay unchanged");
  for (int i = 0; i < reply.known.interfaces_size(); ++i)
    Check(Same(records[static_cast<std::size_t>(i) + 1], Merged(reply.known.interfaces(i), reply)),
          "an appended record merges the first entries of its id");
}

void CheckRequest(std::int32_t id, const nm::InterfaceConfig& source) {
  Info record;
  record.mode = source.mode();
  TakeAddress(source, record);
  record.gateway = source.gateway();
  if (source.dns_size() > 0) record.dns = source.dns(0);
  nm::InterfaceConfig request;
  network::ToWire(id, record, request);

  nm::InterfaceConfig expected;
  expected.set_id(id);
  if (record.mode == 1 && !record.ip.empty() && !record.netmask.empty()) {
    expected.set_mode(nm::STATIC);
    expected.set_ip(record.ip);
    expected.set_netmask(record.netmask);
    expected.set_gateway(record.gateway);
    if (!record.dns.empty()) expected.add_dns(record.dns);
  }
  Check(request.SerializeAsString() == expected.SerializeAsString(),
        "a request is static and complete, or dynamic and empty");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  google::protobuf::SetLogHandler(nullptr);  // it reports every invalid UTF-8 string
  fuzz::Input input(data, size);
  const std::int32_t id = input.SignedByte();
  Reply reply;
  if (!input.ParsePart(reply.known) || !input.ParsePart(reply.config) ||
      !input.ParsePart(reply.status))
    return 0;
  CheckFill(id, reply);
  for (const auto& entry : reply.config.configs()) {
    CheckFill(entry.id(), reply);
    CheckRequest(entry.id(), entry);
  }
  CheckAppend(reply);

  nm::SwitchMode mode;
  if (!input.ParsePart(mode)) return 0;
  const NetworkgRPC::SwitchMode record = network::ToRecord(mode);
  Check(record.id == mode.id() && record.name == mode.name(), "a switch mode is copied");
  return 0;
}
