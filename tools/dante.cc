// networkgrpc dante: the settings of the Dante module.
#include "tools/dante.h"

#include <algorithm>
#include <memory>

#include "terminal/table.h"
#include "tools/call.h"
#include "tools/commands.h"
#include "tools/pending.h"

namespace tool {
namespace {

// A command without its argument shows the setting, with it sets it.
template <class T>
struct Setting {
  const char* name;
  const char* description;
  std::function<Json(const std::optional<T>& value)> run;
  ToText show;
  const char* example;
};

Json DeviceName(const std::optional<std::string>& name) {
  if (name) SetDeviceName(*name);
  return {{"name", name ? *name : ReadDeviceName()}};
}

Json SampleRate(const std::optional<std::uint32_t>& rate) {
  const auto available = ReadSampleRates();  // before: the change is the last call
  if (rate) SetSampleRate(*rate);
  return {{"sample_rate", rate ? *rate : ReadSampleRate()}, {"available", available}};
}

Json Latency(const std::optional<std::uint32_t>& latency) {
  const auto minimum = ReadIfImplemented(rpc::kGetMinLatency, "read the minimum latency");
  if (latency) SetLatency(*latency);
  return {{"latency", latency ? *latency : ReadLatency()},
          {"minimum", minimum ? Json(minimum->latency()) : Json()}};
}

Json Aes67(const std::optional<bool>& on) {
  const bool available =
      Read(rpc::kGetIsAES67Available, "read whether AES67 is available").status();
  if (on) SetAes67(*on);
  return {{"aes67", on ? *on : ReadAes67()}, {"available", available}};
}

Json Transmit(Tool& tool, const std::optional<bool>& on) {
  if (on && !*on) tool.Confirm({"the module will stop transmitting audio on all channels"});
  if (on) SetTransmitDisabled(!*on);
  return {{"transmit", on ? *on : !ReadTransmitDisabled()}};
}

Json PtpSlaveOnly(const std::optional<bool>& on) {
  if (on) SetPtpSlaveOnly(*on);
  return {{"ptp_slave_only", on ? *on : ReadPtpSlaveOnly()}};
}

Json Version() {
  return {{"software", Read(rpc::kGetSoftwareVersion, "read the software version").version()},
          {"firmware", Read(rpc::kGetFirmwareVersion, "read the firmware version").version()}};
}

Json Model() {
  const auto manufacturer = ReadIfImplemented(rpc::kGetManufacturerName, "read the manufacturer");
  return {{"manufacturer", manufacturer ? Json(manufacturer->name()) : Json()},
          {"name", Read(rpc::kGetModelName, "read the model name").name()},
          {"version", Read(rpc::kGetModelVersion, "read the model version").version()}};
}

Json Restart(Tool& tool) {
  tool.Confirm([] {
    auto changes = AlsoApplied(PendingNetworkSettings());
    changes.insert(changes.begin(), "restarting the Dante module interrupts audio");
    return changes;
  });
  ReloadNetwork();
  return {{"rebooted", true}};
}

Json Reconnect(Tool& tool) {
  tool.Confirm({"the daemon will connect to the Dante module anew, which may interrupt audio"});
  Change(rpc::kReconnect, "reconnect to the Dante module");
  return {{"reconnected", true}};
}

// --- Text ----------------------------------------------------------------------

std::string ShowSampleRate(const Json& result) {
  return Text(result["sample_rate"]) + " (available: " + Joined(result["available"]) + ")\n";
}

std::string ShowLatency(const Json& result) {
  return Text(result["latency"]) + " (minimum: " + TextOrUnknown(result["minimum"]) + ")\n";
}

std::string ShowAes67(const Json& result) {
  return std::string(OnOff(result["aes67"])) + (result["available"] ? "\n" : " (not available)\n");
}

std::string ShowPairs(const Json& result) {
  terminal::Table table;
  for (const auto& [member, value] : result.items()) table.Add({member, TextOrUnknown(value)});
  return table.Text();
}

std::string ShowPtp(const Json& result) {
  terminal::Table table;
  table.Add({"clock", TextOrUnknown(result["clock"])});
  table.Add({"slave only", OnOff(result["slave_only"])});
  table.Add({"status value1", TextOrUnknown(result["value1"])});
  for (const char* member : {"value1", "value2"})
    table.Add({std::string("configuration ") + member, TextOrUnknown(result["config"][member])});
  return table.Text();
}

// --- Command line --------------------------------------------------------------

template <class T>
Command AddSetting(Tool& tool, const Command& noun, const char* argument, const char* meaning,
                   const Setting<T>& setting, Candidates candidates = Candidates::kNothing) {
  const auto value = std::make_shared<std::optional<T>>();
  const std::string base = std::string("networkgrpc dante ") + setting.name;
  Command verb = tool.AddVerb(noun, setting.name,
                              {setting.description,
                               [run = setting.run, value] { return run(*value); },
                               setting.show,
                               {base, base + " " + setting.example}});
  Parameter parameter = verb.OptionalArgument(argument, value.get(), meaning);
  if (candidates != Candidates::kNothing) parameter.Offer(candidates);
  tool.Undoable(verb, Daemon::kDante);
  return verb;
}

Command AddSwitch(Tool& tool, const Command& noun, const Setting<bool>& setting) {
  return AddSetting(tool, noun, "STATE", "on or off", setting);
}

void AddNumber(Tool& tool, const Command& noun, const Setting<std::uint32_t>& setting,
               Candidates candidates) {
  AddSetting(tool, noun, "VALUE", "The new value", setting, candidates);
}

void AddAction(Tool& tool, const Command& noun, const std::string& name, const char* description,
               Json (*run)(Tool&), const char* done) {
  Command verb = tool.AddVerb(noun, name,
                              {description,
                               [&tool, run] { return run(tool); },
                               [done](const Json&) { return std::string(done) + "\n"; },
                               {"networkgrpc dante " + name + " --yes"}});
  tool.AddYes(verb);
  tool.Undoable(verb, Daemon::kNetworkManager);
}

}  // namespace

void AddDante(Tool& tool) {
  const Command noun = tool.AddNoun("dante", "Show and set the settings of the Dante module", "");
  AddSetting<std::string>(
      tool, noun, "NAME", "The new name",
      {"name", "Show or set the device name", DeviceName, ShowMember("name"), "'Studio A'"});
  tool.AddVerb(noun, "version",
               {"Show the software and firmware versions",
                Version,
                ShowPairs,
                {"networkgrpc dante version"}});
  tool.AddVerb(noun, "model",
               {"Show the manufacturer, the model name and its version",
                Model,
                ShowPairs,
                {"networkgrpc dante model"}});
  tool.AddVerb(noun, "ptp",
               {"Show the state and the configuration of the PTP clock",
                ReadPtp,
                ShowPtp,
                {"networkgrpc dante ptp"}});
  AddNumber(tool, noun,
            {"sample-rate", "Show or set the sample rate; list the available rates", SampleRate,
             ShowSampleRate, "96000"},
            Candidates::kSampleRates);
  AddNumber(
      tool, noun,
      {"latency", "Show or set the latency, in the daemon's unit", Latency, ShowLatency, "2000"},
      Candidates::kNothing);
  AddSwitch(tool, noun, {"aes67", "Show or set AES67 mode", Aes67, ShowAes67, "on"});
  Command transmit =
      AddSwitch(tool, noun,
                {"transmit", "Show or set whether the module transmits",
                 [&tool](const std::optional<bool>& on) { return Transmit(tool, on); },
                 ShowMember("transmit"), "off --yes"});
  tool.AddYes(transmit);
  AddSwitch(tool, noun,
            {"ptp-slave-only", "Show or set PTP slave-only mode", PtpSlaveOnly,
             ShowMember("ptp_slave_only"), "on"});
  AddAction(tool, noun, "reboot", "Restart the Dante module: reload the network configuration",
            Restart, "the Dante module restarts");
  AddAction(tool, noun, "reconnect", "Make the daemon connect to the Dante module anew", Reconnect,
            "the daemon reconnects to the Dante module");
}

}  // namespace tool
