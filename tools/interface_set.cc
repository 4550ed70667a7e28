// networkgrpc interface set: stores addresses, and can roll them back.
#include <iostream>
#include <optional>

#include "terminal/arguments.h"
#include "terminal/prompt.h"
#include "tools/call.h"
#include "tools/interface.h"
#include "tools/rollback.h"

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
    Misused("--control, --dante-primary, --dante-secondary or --name is required");
  const bool addresses =
      !info.ip.empty() || !info.netmask.empty() || !info.gateway.empty() || !info.dns.empty();
  if (arguments.dynamic && addresses) Misused("--dynamic cannot be combined with addresses");
  // The library would store dynamic addressing for an incomplete address.
  if (!arguments.dynamic && (info.ip.empty() || info.netmask.empty()))
    Misused("--dynamic, or both --ip and --netmask are required");
  if (arguments.confirm_within != 0 && !arguments.reload)
    Misused(
        "--confirm-within requires --reload: without it nothing is applied, so there is nothing "
        "to roll back");
}

NetworkgRPC::InterfaceInfo Target(const Arguments& arguments) {
  if (!arguments.name.empty()) return FindInterface(arguments.name);
  const auto& setting = arguments.control         ? client::kControlInterface
                        : arguments.dante_primary ? client::kDantePrimaryInterface
                                                  : client::kDanteSecondaryInterface;
  for (const auto& interface : AllInterfaces())
    if (RoleOf(interface.id) == setting.role) return interface;
  throw Failure(ExitStatus::kNotFound,
                std::string(setting.role) + " interface not found; see 'networkgrpc doctor'",
                kDaemon);
}

void Store(const Arguments& arguments, const NetworkgRPC::InterfaceInfo& target) {
  const auto& info = arguments.info;
  Do(kDaemon, "configure interface '" + target.name + "'", [&] {
    if (arguments.control) return NetworkgRPC::SetControlIP(info, arguments.reload);
    if (arguments.dante_primary) return NetworkgRPC::SetDanteIP(info, 0, arguments.reload);
    if (arguments.dante_secondary) return NetworkgRPC::SetDanteIP(info, 1, arguments.reload);
    return NetworkgRPC::SetGenericIP(target.id, info, arguments.reload);
  });
}

void ConfirmOrRestore(Tool& tool, const Arguments& arguments, Rollback& rollback) {
  time_limit::Stop();
  rollback.Restart(arguments.confirm_within);
  if (terminal::AnswersYesWithin(arguments.confirm_within, "Keep the new configuration?") &&
      rollback.Keep())
    return;
  std::cerr << '\n';
  time_limit::Start(tool.Limit());
  time_limit::Calling(kDaemon);
  if (rollback.Restore())
    throw Failure(ExitStatus::kFailed, "not confirmed: the previous configuration is restored");
  throw Failure(ExitStatus::kFailed,
                "not confirmed, and restoring the previous configuration failed; see 'networkgrpc "
                "interface list'",
                kDaemon);
}

Json Set(Tool& tool, Arguments arguments) {
  Check(arguments);
  arguments.info.mode = arguments.dynamic ? kDynamic : kStatic;
  // Before the first call: see Rollback.
  std::optional<Rollback> rollback;
  if (arguments.confirm_within != 0) rollback.emplace();

  const auto target = Target(arguments);
  if (target.active && !rollback)
    tool.Confirm("interface '" + target.name + "' is in use at " + target.ip, "Change it?");
  if (rollback)
    rollback->Arm(StoredConfiguration(target.id).SerializeAsString(),
                  tool.Limit().seconds + arguments.confirm_within);
  Store(arguments, target);
  if (rollback) ConfirmOrRestore(tool, arguments, *rollback);
  return {{"id", target.id},
          {"name", target.name},
          {"mode", ModeToJson(arguments.info.mode)},
          {"ip", arguments.info.ip},
          {"netmask", arguments.info.netmask},
          {"gateway", arguments.info.gateway},
          {"dns", arguments.info.dns},
          {"reload", arguments.reload}};
}

std::string Show(const Json& result) {
  std::string text = Text(result["name"]) + ": " + Text(result["mode"]);
  if (result["ip"] != "") text += " " + Text(result["ip"]) + " " + Text(result["netmask"]);
  return text + (result["reload"] ? ", stored and applied\n" : ", stored\n");
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
                   {"Store the addresses of an interface; to be confirmed if it is in use",
                    [&tool, arguments] { return Set(tool, *arguments); },
                    Show,
                    {"networkgrpc interface set --control --ip 10.0.0.60 --netmask 255.0.0.0 --yes",
                     "networkgrpc interface set --dante-primary --dynamic --reload --yes"}});
  AddTarget(tool, verb, *arguments);
  verb.add_flag("--dynamic", arguments->dynamic, "Use the addresses that the network assigns");
  auto& info = arguments->info;
  verb.add_option("--ip", info.ip, "Static IPv4 address")->type_name("ADDRESS");
  verb.add_option("--netmask", info.netmask, "Netmask")->type_name("ADDRESS");
  verb.add_option("--gateway", info.gateway, "Default gateway")->type_name("ADDRESS");
  verb.add_option("--dns", info.dns, "DNS server")->type_name("ADDRESS");
  verb.add_flag("--reload", arguments->reload, "Apply the stored configuration at once");
  verb.add_option("--confirm-within", arguments->confirm_within,
                  "Ask after the change instead, and restore the previous configuration unless "
                  "the answer is y in time; also if networkgrpc is killed or its terminal lost")
      ->type_name("SECONDS")
      ->check(terminal::Seconds(0.1));
  tool.AddYes(verb);
}

}  // namespace tool
