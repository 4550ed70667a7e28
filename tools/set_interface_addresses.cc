// networkgrpc interface set: stores addresses.
#include <memory>

#include "tools/call.h"
#include "tools/interface.h"
#include "tools/ipv4.h"
#include "tools/pending.h"

namespace tool {
namespace {

struct AddressArguments {
  bool control = false;
  bool dante_primary = false;
  bool dante_secondary = false;
  std::string name;
  bool dynamic = false;
  std::string ip;
  std::string netmask;
  std::string gateway;
  std::vector<std::string> dns;
  bool reload = false;
};

[[noreturn]] void Misused(const std::string& message) {
  throw Failure(ExitStatus::kUsage, message);
}

// "10.0.0.1/24" stands for address and netmask.
void SplitPrefix(AddressArguments& arguments) {
  const std::size_t slash = arguments.ip.find('/');
  if (slash == std::string::npos) return;
  const std::string length = arguments.ip.substr(slash + 1);
  if (!arguments.netmask.empty())
    Misused("--ip with a prefix length and --netmask exclude each other");
  for (int bits = 1; bits <= 32; ++bits)
    if (std::to_string(bits) == length) arguments.netmask = Netmask(bits);
  if (arguments.netmask.empty())
    Misused("--ip '" + arguments.ip + "': the prefix length must be an integer from 1 to 32");
  arguments.ip.erase(slash);
}

void Check(const AddressArguments& arguments) {
  if (!arguments.control && !arguments.dante_primary && !arguments.dante_secondary &&
      arguments.name.empty())
    Misused("--control, --dante-primary, --dante-secondary or --name is required");
  const bool addresses = !arguments.ip.empty() || !arguments.netmask.empty() ||
                         !arguments.gateway.empty() || !arguments.dns.empty();
  if (arguments.dynamic && addresses) Misused("--dynamic cannot be combined with addresses");
  if (!arguments.dynamic && (arguments.ip.empty() || arguments.netmask.empty()))
    Misused("--dynamic, or an address with its netmask is required, such as --ip 10.0.0.2/24");
  if (arguments.dynamic) return;
  const std::string wrong = CheckAddresses(arguments.ip, arguments.netmask, arguments.gateway);
  if (!wrong.empty()) Misused(wrong);
  for (const std::string& server : arguments.dns)
    if (!ParseIpv4(server)) Misused("DNS server '" + server + "' is not an IPv4 address");
}

Interface Chosen(const AddressArguments& arguments) {
  if (!arguments.name.empty()) return FindInterface(arguments.name);
  return FindRole(arguments.control         ? client::kControlInterface.role
                  : arguments.dante_primary ? client::kDantePrimaryInterface.role
                                            : client::kDanteSecondaryInterface.role);
}

nm::InterfaceConfig Wanted(const AddressArguments& arguments, const Interface& target) {
  return WithAddresses(target, {{"mode", ModeToJson(arguments.dynamic ? nm::DYNAMIC : nm::STATIC)},
                                {"ip", arguments.ip},
                                {"netmask", arguments.netmask},
                                {"gateway", arguments.gateway},
                                {"dns", arguments.dns}});
}

std::string Described(const nm::InterfaceConfig& config) {
  const std::string address = AddressText(config.ip(), config.netmask());
  return Text(ModeToJson(config.mode())) + (address.empty() ? "" : " " + address);
}

// What the question names: the change, and what else a reload applies.
std::vector<std::string> Changes(const AddressArguments& arguments, const Interface& target,
                                 const nm::InterfaceConfig& wanted) {
  std::vector<std::string> changes = {
      "interface '" + target.name + "' is " +
      (target.IsActive() ? "in use at " + AddressText(target.status->ip(), target.status->netmask())
                         : "not in use") +
      "; " + Described(wanted) + " will be stored" + (arguments.reload ? " and applied" : "")};
  if (arguments.reload)
    for (std::string& line : AlsoApplied(PendingNetworkSettings(), {InterfacePath(target.name)}))
      changes.push_back(std::move(line));
  return changes;
}

Json Store(const AddressArguments& arguments, const Interface& target,
           const nm::InterfaceConfig& wanted) {
  StoreConfiguration(target, wanted);
  Json result = {{"id", target.id}, {"name", target.name}, {"stored", true}, {"applied", false}};
  result.update(ToJson(wanted));
  if (arguments.reload)
    Apply("the configuration of interface '" + target.name + "'", result, ReloadNetwork);
  return result;
}

Json SetAddresses(Tool& tool, AddressArguments arguments) {
  SplitPrefix(arguments);
  Check(arguments);
  const Interface target = Chosen(arguments);
  const nm::InterfaceConfig wanted = Wanted(arguments, target);
  if (target.IsActive() || arguments.reload)
    tool.Confirm([&] { return Changes(arguments, target, wanted); });
  return Store(arguments, target, wanted);
}

std::string ShowAddresses(const Json& result) {
  const std::string address = AddressText(result["ip"], result["netmask"]);
  return Text(result["name"]) + ": " + Text(result["mode"]) + (address.empty() ? "" : " ") +
         Text(address) + ShowApplied(result);
}

void AddTarget(Command& verb, AddressArguments& arguments) {
  verb.Flag("--control", &arguments.control, "Configure the control interface");
  verb.Flag("--dante-primary", &arguments.dante_primary, "Configure the Dante primary interface");
  verb.Flag("--dante-secondary", &arguments.dante_secondary,
            "Configure the Dante secondary interface");
  verb.Option("--name", "NAME", &arguments.name, "Configure the interface of this name or id")
      .Offer(Candidates::kInterfaceNames);
  verb.AtMostOne({"--control", "--dante-primary", "--dante-secondary", "--name"});
}

}  // namespace

void AddInterfaceSet(Tool& tool, const Command& noun) {
  const auto arguments = std::make_shared<AddressArguments>();
  Command verb =
      tool.AddVerb(noun, "set",
                   {"Store the addresses of an interface; to be confirmed if it is in use",
                    [&tool, arguments] { return SetAddresses(tool, *arguments); },
                    ShowAddresses,
                    {"networkgrpc interface set --control --ip 10.0.0.60/8 --yes",
                     "networkgrpc interface set --dante-primary --dynamic --reload --yes"}});
  AddTarget(verb, *arguments);
  verb.Flag("--dynamic", &arguments->dynamic, "Use the addresses that the network assigns");
  verb.Option("--ip", "ADDRESS[/N]", &arguments->ip,
              "Static IPv4 address, with or without prefix length");
  verb.Option("--netmask", "ADDRESS", &arguments->netmask, "Netmask, such as 255.255.255.0");
  verb.Option("--gateway", "ADDRESS", &arguments->gateway, "Default gateway");
  verb.Option("--dns", "ADDRESS", &arguments->dns, "DNS server; may be repeated");
  verb.Flag("--reload", &arguments->reload, "Apply the stored configuration at once");
  tool.AddYes(verb);
  tool.Undoable(verb, Daemon::kNetworkManager);
}

}  // namespace tool
