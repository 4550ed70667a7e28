// networkgrpc dante: the settings of the Dante audio-network module.
#include "DantegRPC.h"
#include "terminal/printable.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/dante_settings.h"
#include "tools/tool.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kDante;

// A setting is read by its command alone, and set by an argument.
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
    Do(kDaemon, "turn AES67 " + state.text, [&] { return DantegRPC::SetAES67(state.IsOn()); });
  const bool available =
      Get<bool>(kDaemon, "read whether AES67 is available", DantegRPC::GetAES67Available);
  return {{"aes67", state.IsGiven() ? state.IsOn() : ReadAes67()}, {"available", available}};
}

Json Transmit(const Argument& state) {
  if (state.IsGiven())
    Do(kDaemon, "turn transmission " + state.text,
       [&] { return DantegRPC::SetDisableTx(!state.IsOn()); });
  return {{"transmit", state.IsGiven() ? state.IsOn() : !ReadTransmitDisabled()}};
}

Json PtpSlaveOnly(const Argument& state) {
  if (state.IsGiven())
    Do(kDaemon, "turn PTP slave-only " + state.text,
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
  tool.Confirm("restarting the Dante side interrupts audio", "Restart it?");
  Do(Daemon::kNetworkManager, "restart the Dante side", DantegRPC::Reboot);
  return {{"rebooted", true}};
}

// --- Text ----------------------------------------------------------------------

std::function<std::string(const Json&)> Switch(const char* member) {
  return [member](const Json& result) { return result[member] ? "on\n" : "off\n"; };
}

std::function<std::string(const Json&)> Number(const char* member) {
  return [member](const Json& result) { return result[member].dump() + "\n"; };
}

std::string ShowName(const Json& result) {
  return terminal::Printable(result["name"].get<std::string>()) + "\n";
}

std::string ShowSampleRate(const Json& result) {
  std::string others;
  for (const Json& rate : result["available"]) others += (others.empty() ? "" : ", ") + rate.dump();
  return result["sample_rate"].dump() + " (of " + others + ")\n";
}

std::string ShowAes67(const Json& result) {
  return std::string(result["aes67"] ? "on" : "off") +
         (result["available"] ? "\n" : " (not available)\n");
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
  std::function<std::string(const Json&)> show;
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
  argument->option = AddSetting(tool, noun, setting, argument)
                         .add_option("VALUE", argument->number, "The new value");
  tool.Offer(argument->option, candidates);
}

void AddSwitch(Tool& tool, CLI::App& noun, const Setting& setting) {
  const auto argument = std::make_shared<Argument>();
  argument->option =
      AddSetting(tool, noun, setting, argument)
          .add_option("STATE", argument->text, "on or off")
          ->check(CLI::Validator(
              [](const std::string& text) {
                return text == "on" || text == "off" ? "" : "'" + text + "' is not on or off";
              },
              ""));
  tool.Offer(argument->option, Candidates::kOnOff);
}

}  // namespace

void AddDante(Tool& tool) {
  CLI::App& noun = tool.AddNoun("dante", "The Dante audio-network module.", "");
  AddText(tool, noun, {"name", "Tells or sets the device name.", Name, ShowName, "'Studio A'"});
  tool.AddVerb(noun, "version",
               {"Tells the software's and the firmware's versions.",
                Version,
                ShowPairs,
                {"networkgrpc dante version"}});
  tool.AddVerb(noun, "model", {"Tells the model.", Model, ShowPairs, {"networkgrpc dante model"}});
  AddNumber(tool, noun,
            {"sample-rate", "Tells or sets the sample rate, and tells which there are.", SampleRate,
             ShowSampleRate, "96000"},
            Candidates::kSampleRates);
  AddNumber(tool, noun,
            {"latency", "Tells or sets the latency, in the daemon's unit.", Latency,
             Number("latency"), "2000"},
            Candidates::kNothing);
  AddSwitch(tool, noun, {"aes67", "Tells or sets whether AES67 is on.", Aes67, ShowAes67, "on"});
  AddSwitch(tool, noun,
            {"transmit", "Tells or sets whether the module transmits.", Transmit,
             Switch("transmit"), "off"});
  AddSwitch(tool, noun,
            {"ptp-slave-only", "Tells or sets whether the module is a PTP slave only.",
             PtpSlaveOnly, Switch("ptp_slave_only"), "on"});
  CLI::App& reboot =
      tool.AddVerb(noun, "reboot",
                   {"Restarts the Dante side: the network configuration is reloaded; asks before.",
                    [&tool] { return Reboot(tool); },
                    [](const Json&) { return "the Dante side restarts\n"; },
                    {"networkgrpc dante reboot --yes"}});
  tool.AddYes(reboot);
}

}  // namespace tool
