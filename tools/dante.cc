// networkgrpc dante: the settings of the Dante module.
#include "tools/dante.h"

#include "terminal/arguments.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/pending.h"
#include "tools/tool.h"

namespace tool {
namespace {

// A command without its argument shows the setting, with it sets it.
struct Argument {
  std::string text;
  std::uint32_t number = 0;
  CLI::Option* option = nullptr;

  bool IsGiven() const { return option->count() != 0; }
  bool IsOn() const { return text == "on"; }
};

Json DeviceName(const Argument& name) {
  if (name.IsGiven()) SetDeviceName(name.text);
  return {{"name", name.IsGiven() ? name.text : ReadDeviceName()}};
}

Json SampleRate(const Argument& rate) {
  const auto available = ReadSampleRates();  // before: the change is the last call
  if (rate.IsGiven()) SetSampleRate(rate.number);
  return {{"sample_rate", rate.IsGiven() ? rate.number : ReadSampleRate()},
          {"available", available}};
}

Json Latency(const Argument& latency) {
  if (latency.IsGiven()) SetLatency(latency.number);
  return {{"latency", latency.IsGiven() ? latency.number : ReadLatency()}};
}

Json Aes67(const Argument& state) {
  const bool available =
      Read(rpc::kGetIsAES67Available, "read whether AES67 is available").status();
  if (state.IsGiven()) SetAes67(state.IsOn());
  return {{"aes67", state.IsGiven() ? state.IsOn() : ReadAes67()}, {"available", available}};
}

Json Transmit(Tool& tool, const Argument& state) {
  if (state.IsGiven() && !state.IsOn())
    tool.Confirm({"the module will stop transmitting audio on all channels"});
  if (state.IsGiven()) SetTransmitDisabled(!state.IsOn());
  return {{"transmit", state.IsGiven() ? state.IsOn() : !ReadTransmitDisabled()}};
}

Json PtpSlaveOnly(const Argument& state) {
  if (state.IsGiven()) SetPtpSlaveOnly(state.IsOn());
  return {{"ptp_slave_only", state.IsGiven() ? state.IsOn() : ReadPtpSlaveOnly()}};
}

Json Version() {
  return {{"software", Read(rpc::kGetSoftwareVersion, "read the software version").version()},
          {"firmware", Read(rpc::kGetFirmwareVersion, "read the firmware version").version()}};
}

Json Model() {
  return {{"name", Read(rpc::kGetModelName, "read the model name").name()},
          {"version", Read(rpc::kGetModelVersion, "read the model version").version()}};
}

Json Reboot(Tool& tool) {
  if (!tool.yes) {
    auto changes = AlsoApplied(PendingNetworkSettings());
    changes.insert(changes.begin(), "restarting the Dante module interrupts audio");
    tool.Confirm(changes);
  }
  ReloadNetwork();
  return {{"rebooted", true}};
}

// --- Text ----------------------------------------------------------------------

std::string ShowSampleRate(const Json& result) {
  std::string others;
  for (const Json& rate : result["available"]) others += (others.empty() ? "" : ", ") + Text(rate);
  return Text(result["sample_rate"]) + " (available: " + others + ")\n";
}

std::string ShowAes67(const Json& result) {
  return std::string(OnOff(result["aes67"])) + (result["available"] ? "\n" : " (not available)\n");
}

std::string ShowPairs(const Json& result) {
  terminal::Table table;
  for (const auto& [member, value] : result.items()) table.Add({member, value.get<std::string>()});
  return table.Text();
}

dapi::Status ToStatus(bool on) {
  dapi::Status status;
  status.set_status(on);
  return status;
}

std::string SwitchAction(const char* what, bool on) {
  return std::string("switch ") + what + " " + OnOff(on);
}

// --- Command line --------------------------------------------------------------

struct Setting {
  const char* name;
  const char* description;
  std::function<Json(const Argument& argument)> run;
  ToText show;
  const char* example;
};

CLI::App& AddSetting(Tool& tool, CLI::App& noun, const Setting& setting,
                     const std::shared_ptr<Argument>& argument) {
  const auto run = setting.run;
  const std::string base = std::string("networkgrpc dante ") + setting.name;
  return tool.AddVerb(noun, setting.name,
                      {setting.description,
                       [run, argument] { return run(*argument); },
                       setting.show,
                       {base, base + " " + setting.example}});
}

void AddText(Tool& tool, CLI::App& noun, const Setting& setting) {
  const auto argument = std::make_shared<Argument>();
  argument->option =
      AddSetting(tool, noun, setting, argument).add_option("NAME", argument->text, "The new name");
}

void AddNumber(Tool& tool, CLI::App& noun, const Setting& setting, Candidates candidates) {
  const auto argument = std::make_shared<Argument>();
  argument->option = terminal::AddInteger(AddSetting(tool, noun, setting, argument), "VALUE",
                                          argument->number, "The new value");
  tool.Offer(argument->option, candidates);
}

CLI::App& AddSwitch(Tool& tool, CLI::App& noun, const Setting& setting) {
  const auto argument = std::make_shared<Argument>();
  CLI::App& verb = AddSetting(tool, noun, setting, argument);
  argument->option =
      verb.add_option("STATE", argument->text, "on or off")->check(terminal::OneOf({"on", "off"}));
  tool.Offer(argument->option, Candidates::kOnOff);
  return verb;
}

}  // namespace

std::string ReadDeviceName() { return Read(rpc::kGetName, "read the device name").name(); }

std::uint32_t ReadSampleRate() {
  return Read(rpc::kGetSampleRate, "read the sample rate").samplerate();
}

std::vector<std::uint32_t> ReadSampleRates() {
  const auto reply = Read(rpc::kGetAvailableSampleRates, "list the sample rates");
  return {reply.samplerates().begin(), reply.samplerates().end()};
}

std::uint32_t ReadLatency() { return Read(rpc::kGetLatency, "read the latency").latency(); }

bool ReadAes67() { return Read(rpc::kGetAES67Status, "read whether AES67 is on").status(); }

bool ReadTransmitDisabled() {
  return Read(rpc::kGetDisableTxStatus, "read whether transmission is disabled").status();
}

bool ReadPtpSlaveOnly() {
  return Read(rpc::kGetPtpSlaveOnlyStatus, "read the PTP slave-only mode").status();
}

void SetDeviceName(const std::string& name) {
  dapi::Name request;
  request.set_name(name);
  Change(rpc::kSetName, "set the device name", request);
}

void SetSampleRate(std::uint32_t rate) {
  dapi::SampleRate request;
  request.set_samplerate(rate);
  Change(rpc::kSetSampleRate, "set the sample rate", request);
}

void SetLatency(std::uint32_t latency) {
  dapi::Latency request;
  request.set_latency(latency);
  Change(rpc::kSetLatency, "set the latency", request);
}

void SetAes67(bool on) { Change(rpc::kSetAES67Status, SwitchAction("AES67", on), ToStatus(on)); }

void SetTransmitDisabled(bool disabled) {
  Change(rpc::kSetDisableTxStatus, SwitchAction("transmission", !disabled), ToStatus(disabled));
}

void SetPtpSlaveOnly(bool on) {
  Change(rpc::kSetPtpSlaveOnlyStatus, SwitchAction("PTP slave-only mode", on), ToStatus(on));
}

dapi::Channels ReadTxChannels() { return Read(rpc::kGetTxChannels, "list the transmit channels"); }

dapi::Channels ReadRxChannels() { return Read(rpc::kGetRxChannels, "list the receive channels"); }

void RenameTxChannel(std::int32_t id, const std::string& name) {
  dapi::Channel request;
  request.set_id(id);
  request.set_name(name);
  ChangeObject(
      {"channel list", [id] { return FindById(ReadTxChannels().channels(), id) != nullptr; }},
      rpc::kSetTxChannelName, "rename transmit channel " + std::to_string(id), request);
}

std::vector<dapi::LinkInfo> ReadRouting(const dapi::Channels& receivers) {
  std::vector<dapi::LinkInfo> links;
  for (const dapi::Channel& channel : receivers.channels()) {
    links.push_back(Read(rpc::kGetRxChannelLink,
                         "read the subscription of receive channel " + std::to_string(channel.id()),
                         channel));
    links.back().set_id(channel.id());
  }
  return links;
}

void SetSubscription(const dapi::LinkInfo& link) {
  const std::int32_t id = link.id();
  ChangeObject(
      {"channel list", [id] { return FindById(ReadRxChannels().channels(), id) != nullptr; }},
      rpc::kSetRxChannelLink, "set the subscription of receive channel " + std::to_string(id),
      link);
}

void AddDante(Tool& tool) {
  CLI::App& noun = tool.AddNoun("dante", "Show and set the settings of the Dante module", "");
  AddText(tool, noun,
          {"name", "Show or set the device name", DeviceName, ShowMember("name"), "'Studio A'"});
  tool.AddVerb(noun, "version",
               {"Show the software and firmware versions",
                Version,
                ShowPairs,
                {"networkgrpc dante version"}});
  tool.AddVerb(noun, "model",
               {"Show the model name and version", Model, ShowPairs, {"networkgrpc dante model"}});
  AddNumber(tool, noun,
            {"sample-rate", "Show or set the sample rate; list the available rates", SampleRate,
             ShowSampleRate, "96000"},
            Candidates::kSampleRates);
  AddNumber(tool, noun,
            {"latency", "Show or set the latency, in the daemon's unit", Latency,
             ShowMember("latency"), "2000"},
            Candidates::kNothing);
  AddSwitch(tool, noun, {"aes67", "Show or set AES67 mode", Aes67, ShowAes67, "on"});
  tool.AddYes(AddSwitch(tool, noun,
                        {"transmit", "Show or set whether the module transmits",
                         [&tool](const Argument& state) { return Transmit(tool, state); },
                         ShowMember("transmit"), "off --yes"}));
  AddSwitch(tool, noun,
            {"ptp-slave-only", "Show or set PTP slave-only mode", PtpSlaveOnly,
             ShowMember("ptp_slave_only"), "on"});
  CLI::App& reboot = tool.AddVerb(noun, "reboot",
                                  {"Restart the Dante module: reload the network configuration",
                                   [&tool] { return Reboot(tool); },
                                   [](const Json&) { return "the Dante module restarts\n"; },
                                   {"networkgrpc dante reboot --yes"}});
  tool.AddYes(reboot);
}

}  // namespace tool
