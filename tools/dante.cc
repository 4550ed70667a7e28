// networkgrpc dante: the settings of the Dante module.
#include "tools/dante.h"

#include "terminal/arguments.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kDante;
using Channels = std::vector<DantegRPC::Channel>;

// A command without its argument shows the setting, with it sets it.
struct Argument {
  std::string text;
  std::uint32_t number = 0;
  CLI::Option* option = nullptr;

  bool IsGiven() const { return option->count() != 0; }
  bool IsOn() const { return text == "on"; }
};

int ToFacade(std::uint32_t number) { return static_cast<int>(number); }

Json Name(const Argument& name) {
  if (!name.IsGiven()) return {{"name", ReadDeviceName()}};
  Do(kDaemon, "set the device name", [&] { return DantegRPC::SetName(name.text); });
  return {{"name", name.text}};
}

Json SampleRate(const Argument& rate) {
  if (rate.IsGiven())
    Do(kDaemon, "set the sample rate",
       [&] { return DantegRPC::SetSampleRate(ToFacade(rate.number)); });
  return {{"sample_rate", rate.IsGiven() ? rate.number : ReadSampleRate()},
          {"available", ReadSampleRates()}};
}

Json Latency(const Argument& latency) {
  if (!latency.IsGiven()) return {{"latency", ReadLatency()}};
  Do(kDaemon, "set the latency", [&] { return DantegRPC::SetLatency(ToFacade(latency.number)); });
  return {{"latency", latency.number}};
}

Json Aes67(const Argument& state) {
  if (state.IsGiven())
    Do(kDaemon, "switch AES67 " + state.text, [&] { return DantegRPC::SetAES67(state.IsOn()); });
  const bool available =
      Get<bool>(kDaemon, "read whether AES67 is available", DantegRPC::GetAES67Available);
  return {{"aes67", state.IsGiven() ? state.IsOn() : ReadAes67()}, {"available", available}};
}

Json Transmit(const Argument& state) {
  if (state.IsGiven())
    Do(kDaemon, "switch transmission " + state.text,
       [&] { return DantegRPC::SetDisableTx(!state.IsOn()); });
  return {{"transmit", state.IsGiven() ? state.IsOn() : !ReadTransmitDisabled()}};
}

Json PtpSlaveOnly(const Argument& state) {
  if (state.IsGiven())
    Do(kDaemon, "switch PTP slave-only mode " + state.text,
       [&] { return DantegRPC::SetPtpSlaveOnly(state.IsOn()); });
  return {{"ptp_slave_only", state.IsGiven() ? state.IsOn() : ReadPtpSlaveOnly()}};
}

Json Version() {
  return {{"software",
           Get<std::string>(kDaemon, "read the software version", DantegRPC::GetSoftwareVersion)},
          {"firmware",
           Get<std::string>(kDaemon, "read the firmware version", DantegRPC::GetFirmwareVersion)}};
}

Json Model() {
  return {
      {"name", Get<std::string>(kDaemon, "read the model name", DantegRPC::GetModelName)},
      {"version", Get<std::string>(kDaemon, "read the model version", DantegRPC::GetModelVersion)}};
}

Json Reboot(Tool& tool) {
  tool.Confirm("restarting the Dante module interrupts audio", "Restart it?");
  Do(Daemon::kNetworkManager, "restart the Dante module", DantegRPC::Reboot);
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

// --- Command line --------------------------------------------------------------

struct Setting {
  const char* name;
  const char* description;
  Json (*run)(const Argument&);
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

void AddSwitch(Tool& tool, CLI::App& noun, const Setting& setting) {
  const auto argument = std::make_shared<Argument>();
  argument->option = AddSetting(tool, noun, setting, argument)
                         .add_option("STATE", argument->text, "on or off")
                         ->check(terminal::OneOf({"on", "off"}));
  tool.Offer(argument->option, Candidates::kOnOff);
}

}  // namespace

std::string ReadDeviceName() {
  return Get<std::string>(kDaemon, "read the device name", DantegRPC::GetName);
}

std::uint32_t ReadSampleRate() {
  return static_cast<std::uint32_t>(
      Get<int>(kDaemon, "read the sample rate", DantegRPC::GetSampleRate));
}

std::vector<std::uint32_t> ReadSampleRates() {
  const auto rates =
      Get<std::vector<int>>(kDaemon, "list the sample rates", DantegRPC::GetAvailableSampleRates);
  return {rates.begin(), rates.end()};
}

std::uint32_t ReadLatency() {
  return static_cast<std::uint32_t>(Get<int>(kDaemon, "read the latency", DantegRPC::GetLatency));
}

bool ReadAes67() {
  return Get<bool>(kDaemon, "read whether AES67 is on", DantegRPC::GetAES67Status);
}

bool ReadTransmitDisabled() {
  return Get<bool>(kDaemon, "read whether transmission is disabled", DantegRPC::GetDisableTx);
}

bool ReadPtpSlaveOnly() {
  return Get<bool>(kDaemon, "read the PTP slave-only mode", DantegRPC::GetPtpSlaveOnly);
}

Channels ReadTxChannels() {
  return Get<Channels>(kDaemon, "list the transmit channels", DantegRPC::GetTxChannels);
}

Channels ReadRxChannels() {
  return Get<Channels>(kDaemon, "list the receive channels", DantegRPC::GetRxChannels);
}

std::vector<DantegRPC::ChannelLink> ReadRouting() {
  return Get<std::vector<DantegRPC::ChannelLink>>(kDaemon, "read the routing",
                                                  DantegRPC::GetTapping);
}

void AddDante(Tool& tool) {
  CLI::App& noun = tool.AddNoun("dante", "Show and set the settings of the Dante module", "");
  AddText(tool, noun,
          {"name", "Show or set the device name", Name, ShowMember("name"), "'Studio A'"});
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
  AddSwitch(tool, noun,
            {"transmit", "Show or set whether the module transmits", Transmit,
             ShowMember("transmit"), "off"});
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
