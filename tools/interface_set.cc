#include "tools/interface_set.h"

#include <iostream>
#include <optional>

#include "NetworkgRPC.h"
#include "terminal/printable.h"
#include "terminal/prompt.h"
#include "tools/call.h"
#include "tools/guardian.h"
#include "tools/interfaces.h"

namespace tool {
namespace {

constexpr auto kDaemon = Daemon::kNetworkManager;

struct Arguments {
  bool control = false;
  bool dante_primary = false;
  bool dante_secondary = false;
  std::string name;
  bool dynamic = false;
  NetworkgRPC::InterfaceInfo info;
  bool reload = false;
  double confirm_within = 0;  // seconds; 0: keep without confirmation
};

[[noreturn]] void Misused(const std::string& message) {
  throw Failure(ExitStatus::kUsage, message);
}

void Check(const Arguments& arguments) {
  const auto& info = arguments.info;
  if (!arguments.control && !arguments.dante_primary && !arguments.dante_secondary &&
      arguments.name.empty())
    Misused("which interface? --control, --dante-primary, --dante-secondary or --name");
  const bool addresses =
      !info.ip.empty() || !info.netmask.empty() || !info.gateway.empty() || !info.dns.empty();
  if (arguments.dynamic && addresses) Misused("--dynamic takes no addresses");
  // The library would store dynamic addressing for half of an address.
  if (!arguments.dynamic && (info.ip.empty() || info.netmask.empty()))
    Misused("give --dynamic, or both --ip and --netmask");
  if (arguments.confirm_within != 0 && !arguments.reload)
    Misused("--confirm-within needs --reload: what is only stored can be looked at in peace");
}

NetworkgRPC::InterfaceInfo Target(const Arguments& arguments) {
  if (!arguments.name.empty()) return FindInterface(arguments.name);
  const std::string role = arguments.control         ? "control"
                           : arguments.dante_primary ? "dante-primary"
                                                     : "dante-secondary";
  for (const auto& interface : AllInterfaces())
    if (RoleOf(interface.id) == role) return interface;
  throw Failure(ExitStatus::kNotFound, "there is no " + role + " interface", kDaemon);
}

void Store(const Arguments& arguments, const NetworkgRPC::InterfaceInfo& target) {
  NetworkgRPC::InterfaceInfo info = arguments.info;
  info.mode = arguments.dynamic ? 0 : 1;
  Do(kDaemon, "configure interface " + target.name, [&] {
    if (arguments.control) return NetworkgRPC::SetControlIP(info, arguments.reload);
    if (arguments.dante_primary) return NetworkgRPC::SetDanteIP(info, 0, arguments.reload);
    if (arguments.dante_secondary) return NetworkgRPC::SetDanteIP(info, 1, arguments.reload);
    return NetworkgRPC::SetGenericIP(target.id, info, arguments.reload);
  });
}

void ConfirmOrPutBack(Tool& tool, const Arguments& arguments, Guardian& guardian) {
  deadline::Stop();
  guardian.Restart(arguments.confirm_within);
  if (terminal::AnswersYesWithin(arguments.confirm_within, "Keep the new configuration?") &&
      guardian.Keep())
    return;
  std::cerr << '\n';
  deadline::Start(tool.Limit());
  deadline::Asking(kDaemon);
  if (guardian.PutBack())
    throw Failure(ExitStatus::kFailed, "not confirmed: the previous configuration is back");
  throw Failure(ExitStatus::kFailed, "not confirmed, and the previous configuration is NOT back",
                kDaemon);
}

Json Set(Tool& tool, const Arguments& arguments) {
  Check(arguments);
  // Before the first call: see Guardian.
  std::optional<Guardian> guardian;
  if (arguments.confirm_within != 0) guardian.emplace();

  const auto target = Target(arguments);
  if (target.active && !guardian)
    tool.Confirm("interface " + target.name + " is in use at " + target.ip, "Change it?");
  if (guardian)
    guardian->Arm(StoredConfiguration(target.id).SerializeAsString(),
                  tool.Limit().seconds + arguments.confirm_within);
  Store(arguments, target);
  if (guardian) ConfirmOrPutBack(tool, arguments, *guardian);
  return {{"id", target.id},
          {"name", target.name},
          {"mode", arguments.dynamic ? "dynamic" : "static"},
          {"ip", arguments.info.ip},
          {"netmask", arguments.info.netmask},
          {"gateway", arguments.info.gateway},
          {"dns", arguments.info.dns},
          {"reload", arguments.reload}};
}

std::string Show(const Json& result) {
  const std::string mode = result["mode"];
  std::string text = result["name"].get<std::string>() + ": " + mode;
  if (mode == "static")
    text += " " + result["ip"].get<std::string>() + " " + result["netmask"].get<std::string>();
  return terminal::Printable(text + (result["reload"] ? ", stored and applied" : ", stored")) +
         "\n";
}

void AddTarget(Tool& tool, CLI::App& verb, Arguments& arguments) {
  std::vector<CLI::Option*> targets = {
      verb.add_flag("--control", arguments.control, "Configure the control interface"),
      verb.add_flag("--dante-primary", arguments.dante_primary,
                    "Configure the Dante primary interface"),
      verb.add_flag("--dante-secondary", arguments.dante_secondary,
                    "Configure the Dante secondary interface"),
      verb.add_option("--name", arguments.name, "Configure the interface of this name or id")
          ->type_name("NAME")};
  tool.Offer(targets.back(), Candidates::kInterfaceNames);
  for (CLI::Option* one : targets)
    for (CLI::Option* other : targets)
      if (one != other) one->excludes(other);
}

}  // namespace

void AddInterfaceSet(Tool& tool, CLI::App& noun) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& verb =
      tool.AddVerb(noun, "set",
                   {"Stores an interface's addresses; asks when the interface is in use.",
                    [&tool, arguments] { return Set(tool, *arguments); },
                    Show,
                    {"networkgrpc interface set --control --ip 10.0.0.60 --netmask 255.0.0.0 --yes",
                     "networkgrpc interface set --dante-primary --dynamic --reload --yes"}});
  AddTarget(tool, verb, *arguments);
  verb.add_flag("--dynamic", arguments->dynamic, "Let the network give the addresses");
  auto& info = arguments->info;
  verb.add_option("--ip", info.ip, "Static IPv4 address")->type_name("ADDRESS");
  verb.add_option("--netmask", info.netmask, "Its netmask")->type_name("ADDRESS");
  verb.add_option("--gateway", info.gateway, "Its default gateway")->type_name("ADDRESS");
  verb.add_option("--dns", info.dns, "Its DNS server")->type_name("ADDRESS");
  verb.add_flag("--reload", arguments->reload, "Apply the stored configuration at once");
  verb.add_option(
          "--confirm-within", arguments->confirm_within,
          "Ask afterwards instead: the previous configuration comes back unless 'y' is read "
          "in time, also when networkgrpc is killed or its terminal lost")
      ->type_name("SECONDS")
      ->check(Seconds(0.1));
  tool.AddYes(verb);
}

}  // namespace tool
