// Which member of the state document is which of the model; see archive.h. The
// order is that of state_document/table.cc, so that a saved document has it.
#pragma once

#include <vector>

#include "simulator/archive.h"
#include "simulator/factory_defaults.h"
#include "simulator/network_rules.h"
#include "simulator/state.h"

namespace simulator {

// --- Host networking -----------------------------------------------------------

template <class Archive>
void Members(Archive& it, Addresses& addresses) {
  it("ip", addresses.ip);
  it("netmask", addresses.netmask);
  it("gateway", addresses.gateway);
  it("dns", addresses.dns);
}

template <class Archive>
void Members(Archive& it, Interface& interface) {
  it("name", interface.name);
  it.WhenReading([&](const Reader&) { interface = FactoryDefaultInterface(interface.name); });
  it("mode", Named(interface.stored.mode, state_document::kAddressingModes));
  Members(it, interface.stored.addresses);
  it("id", interface.id);
  it("mac", interface.mac);
  it("speed", Named(interface.speed, state_document::kLinkSpeeds));
  it("lease", interface.lease);
  it("link_local", interface.link_local);
  it("flag6", interface.flag6);
  it("flag7", interface.stored.flag7);
  it("flag8", interface.stored.flag8);
  // What is in use follows from the rest, unless the document says it.
  it.WhenReading([&](const Reader&) { interface.live = AddressesInUse(interface); });
  it("live", interface.live);
}

template <class Archive>
void Members(Archive& it, SwitchMode& mode) {
  it("id", mode.id);
  it("name", mode.name);
}

/// Gives an id to every interface whose entry of the document has none: that of
/// the factory's interface if it is free, else the next free one.
void NumberInterfaces(const Json& entries, std::vector<Interface>& interfaces);

template <class Archive>
void Members(Archive& it, Network& network) {
  it("hostname", network.hostname);
  it("ntp", network.stored_ntp);
  it("switch_mode", network.stored_switch_mode);
  it("interfaces", network.interfaces);
  it("switch_modes", network.switch_modes);
  it.WhenReading([&](const Reader& reader) {
    if (reader.Has("interfaces")) NumberInterfaces(reader.Get("interfaces"), network.interfaces);
    network.live_switch_mode = network.stored_switch_mode;
    network.live_ntp = network.stored_ntp;
  });
  it("switch_mode_in_effect", network.live_switch_mode);
  it("ntp_in_effect", network.live_ntp);
}

// --- Dante module --------------------------------------------------------------

template <class Archive>
void Members(Archive& it, Channel& channel) {
  it("id", channel.id);
  it.WhenReading([&](const Reader&) { channel = FactoryDefaultChannel(channel.id); });
  it("name", channel.name);
  it("default_name", channel.default_name);
}

template <class Archive>
void Members(Archive& it, RawStream& raw) {
  it("ip", raw.ip);
  it("value2", raw.values[0]);
  it("value3", raw.values[1]);
  it("value4", raw.values[2]);
  it("value5", raw.values[3]);
  it("value6", raw.values[4]);
  it("encoding", Named(raw.encoding, state_document::kEncodings));
  it("sip", raw.sip);
  it("session_id", raw.session_id);
}

/// One receive channel and what it is subscribed to.
struct Route {
  std::int32_t rx_channel = 0;
  Link link;
};

template <class Archive>
void Members(Archive& it, Route& route) {
  it("rx_channel", route.rx_channel);
  it("device", route.link.device_name);
  it("channel", route.link.channel_name);
  it("raw", route.link.raw);
  it("flag5", route.link.flag5);
}

/// One for each receive channel.
std::vector<Route> Routes(const Dante& dante);

/// Subscribes the channels accordingly.
void SetRoutes(const std::vector<Route>& routes, Dante& dante);

template <class Archive>
void Members(Archive& it, Ptp& ptp) {
  it("config_value1", ptp.config_value1);
  it("config_value2", ptp.config_value2);
  it("status_value1", ptp.status_value1);
  it("clock", Named(ptp.clock, state_document::kClocks));
}

template <class Archive>
void Members(Archive& it, Dante& dante) {
  std::vector<Route> routes = Routes(dante);
  it("name", dante.name);
  it("sample_rate", dante.sample_rate);
  it("latency", dante.latency);
  it("aes67", dante.aes67);
  it("transmit_disabled", dante.tx_disabled);
  it("ptp_slave_only", dante.ptp.slave_only);
  it("tx_channels", dante.tx);
  it("routing", routes);
  it("rx_channels", dante.rx);
  it("manufacturer", dante.manufacturer);
  it("model_name", dante.model_name);
  it("model_version", dante.model_version);
  it("software_version", dante.software_version);
  it("firmware_version", dante.firmware_version);
  it("sample_rates", dante.sample_rates);
  it("min_latency", dante.min_latency);
  it("aes67_available", dante.aes67_available);
  it("ptp", dante.ptp);
  it.WhenReading([&](const Reader& reader) {
    if (!reader.Has("routing")) return;
    // A device that is not a simulated one has as many channels as it routes.
    if (!reader.Has("rx_channels")) {
      dante.rx.clear();
      for (const Route& route : routes) dante.rx.push_back(FactoryDefaultChannel(route.rx_channel));
    }
    SetRoutes(routes, dante);
  });
}

// --- Faults --------------------------------------------------------------------

template <class Archive>
void Members(Archive& it, Fault& fault) {
  it("method", fault.method);
  it("fault", Named(fault.kind, state_document::kFaults));
  it("status", Named(fault.status, state_document::kStatuses));
  it("message", fault.message);
  it("delay_ms", fault.delay_ms);
  it("times", fault.times);
  it("after", fault.after);
  it("when", fault.when);
  it("request", fault.request);
  it("answer", fault.answer);
  it("then", fault.then);
}

// --- The document --------------------------------------------------------------

template <class Archive>
void Members(Archive& it, State& state) {
  std::int32_t schema = 1;
  it("schema", schema);
  it("network", state.device.network);
  it("dante", state.device.dante);
  it("faults", state.faults);
}

}  // namespace simulator
