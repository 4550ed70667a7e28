// networkgrpc doctor: diagnoses the daemons and the environment, suggests remedies.
#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <map>
#include <optional>
#include <sstream>

#include "NetworkgRPC_version.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/commands.h"
#include "tools/dante.h"
#include "tools/interface.h"
#include "tools/probe.h"

namespace tool {
namespace {

bool IsReachable(const Reply& reply) {
  return !reply.failure.has_value() || reply.failure->status == ExitStatus::kErrorStatus;
}

// The library's variables, and those that gRPC reads.
Json Environment() {
  std::vector<const char*> names;
  for (const client::Setting& it : client::kSettings) names.push_back(it.variable);
  names.insert(names.end(),
               {"http_proxy", "https_proxy", "grpc_proxy", "no_grpc_proxy", "no_proxy"});
  Json environment = Json::object();
  for (const char* name : names) {
    const char* value = std::getenv(name);
    environment[name] = value != nullptr ? Json(value) : Json(nullptr);
  }
  return environment;
}

// --- Problems --------------------------------------------------------------------

class Findings {
 public:
  void Add(const std::string& problem, const std::string& advice) {
    list.push_back({{"problem", problem}, {"advice", advice}});
  }
  const Json& List() const { return list; }

 private:
  Json list = Json::array();
};

// gRPC uses the first of these that is set, and no_grpc_proxy or else no_proxy; the
// names are in lower case only.
void CheckProxies(Findings& findings) {
  for (const char* proxy : {"grpc_proxy", "https_proxy", "http_proxy"}) {
    const char* value = std::getenv(proxy);
    if (value == nullptr || *value == '\0') continue;
    const char* exempt = std::getenv("no_grpc_proxy");
    if (exempt == nullptr) exempt = std::getenv("no_proxy");
    const std::string hosts = exempt != nullptr ? exempt : "";
    if (hosts.find("localhost") != std::string::npos &&
        hosts.find("127.0.0.1") != std::string::npos)
      return;
    findings.Add(std::string(proxy) + " is set: calls to daemons on this host go to the proxy",
                 "unset it, or set no_grpc_proxy=localhost,127.0.0.1,::1");
    return;
  }
}

void CheckEndpoint(Daemon daemon, Findings& findings) {
  const std::string endpoint = Endpoint(daemon);
  const std::string variable = EndpointSetting(daemon).variable;
  const std::string form = "use host:port, ipv4:address:port or unix:path";
  if (endpoint.empty())
    findings.Add(variable + " is set, but empty", "unset it, or " + form);
  else if (endpoint.find("://") != std::string::npos && endpoint.rfind("dns://", 0) != 0 &&
           endpoint.rfind("unix://", 0) != 0)
    findings.Add(variable + " is a URL, not an endpoint", form);
  else if (endpoint.find(':') == std::string::npos)
    findings.Add(variable + " has no port", form);
}

void CheckReply(Daemon daemon, const Reply& reply, Findings& findings) {
  if (!reply.failure.has_value()) return;
  const std::string where = The(daemon) + " at " + Endpoint(daemon);
  if (reply.failure->status == ExitStatus::kTimeLimit)
    findings.Add("no reply from " + where, "restart " + The(daemon) + ", or correct the endpoint");
  else if (reply.failure->status == ExitStatus::kUnreachable)
    findings.Add(where + " cannot be reached", "start " + The(daemon) + ", or set " +
                                                   EndpointSetting(daemon).variable +
                                                   " to its endpoint");
  else
    findings.Add(where + " replies with an error",
                 "check the daemon's log, and whether another program listens there");
}

void CheckRoles(const Json& roles, Findings& findings) {
  for (const Json& role : roles)
    if (role["id"].is_null())
      findings.Add("no interface is named '" + role["interface"].get<std::string>() +
                       "', so the role " + role["role"].get<std::string>() + " has none",
                   "set " + role["variable"].get<std::string>() +
                       " to a name from 'networkgrpc interface list'");
}

// Audio that is not synchronised drops out.
void CheckClock(const Json& clock, Findings& findings) {
  if (!clock.is_null() && !IsSynchronised(clock))
    findings.Add("the PTP clock is not synchronised: it is " + Text(clock),
                 "check the cables of the Dante network; see 'networkgrpc dante ptp'");
}

// --- The report ------------------------------------------------------------------

Json DaemonReport(Daemon daemon, const Reply& reply) {
  const bool answers = !reply.failure.has_value();
  return {{"daemon", Name(daemon)},
          {"endpoint", Endpoint(daemon)},
          {"reachable", IsReachable(reply)},
          {"grpc_status", answers ? "OK" : reply.failure->grpc_status},
          {"message", answers ? "" : reply.failure->message},
          {"round_trip_ms", answers ? Json(reply.seconds * 1000) : Json()}};
}

Json Roles(bool network_replies) {
  if (!network_replies) return Json::array();
  const auto interfaces = ReadInterfaces();
  Json roles = Json::array();
  for (const client::Setting* it :
       {&client::kDantePrimaryInterface, &client::kDanteSecondaryInterface,
        &client::kControlInterface}) {
    Json role = {{"role", it->role},
                 {"variable", it->variable},
                 {"interface", it->Value()},
                 {"id", nullptr}};
    for (const Interface& interface : interfaces)
      if (interface.role == it->role) role["id"] = interface.id;
    roles.push_back(role);
  }
  return roles;
}

Json Versions(bool dante_replies) {
  Json versions = {{"networkgrpc", NETWORKGRPC_VERSION}, {"software", ""}, {"firmware", ""}};
  if (!dante_replies) return versions;
  versions["software"] = Read(rpc::kGetSoftwareVersion, "read the software version").version();
  versions["firmware"] = Read(rpc::kGetFirmwareVersion, "read the firmware version").version();
  return versions;
}

Json ClockState(bool dante_replies) { return dante_replies ? ReadPtp()["clock"] : Json(); }

// Empty if the daemon fails; that is a finding.
Json Try(Json (*read)(bool), bool replies, Daemon daemon, Findings& findings, Json otherwise) {
  try {
    return read(replies);
  } catch (const Failure& failure) {
    findings.Add(failure.message, "check the log of " + The(daemon));
    return otherwise;
  }
}

// A daemon that cannot be reached explains the other problems.
[[noreturn]] void Throw(const Json& result) {
  const std::size_t count = result["problems"].size();
  const std::string message =
      "found " + std::to_string(count) + (count == 1 ? " problem" : " problems");
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDante})
    for (const Json& it : result["daemons"])
      if (it["daemon"] == Name(daemon) && !it["reachable"])
        throw Failure(ExitStatus::kUnreachable, message, daemon).With(result);
  throw Failure(ExitStatus::kFailed, message).With(result);
}

Json Diagnose(const Tool& tool) {
  constexpr double kLongestCall = 5;  // a daemon that never replies must not delay the rest
  SetCallOptions({std::min(kLongestCall, tool.Timeout() / 3), 0, tool.Verbose()});
  Findings findings;
  CheckProxies(findings);
  Json result = {{"daemons", Json::array()}};
  std::map<Daemon, bool> replies;
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDante}) {
    CheckEndpoint(daemon, findings);
    const Reply reply = Probe(daemon);
    replies[daemon] = !reply.failure.has_value();
    CheckReply(daemon, reply, findings);
    result["daemons"].push_back(DaemonReport(daemon, reply));
  }
  result["roles"] = Try(Roles, replies[Daemon::kNetworkManager], Daemon::kNetworkManager, findings,
                        Json::array());
  CheckRoles(result["roles"], findings);
  result["versions"] =
      Try(Versions, replies[Daemon::kDante], Daemon::kDante, findings, Versions(false));
  result["ptp_clock"] = Try(ClockState, replies[Daemon::kDante], Daemon::kDante, findings, nullptr);
  CheckClock(result["ptp_clock"], findings);
  result["environment"] = Environment();
  result["problems"] = findings.List();
  if (!findings.List().empty()) Throw(result);
  return result;
}

// --- Text ------------------------------------------------------------------------

std::string ShowDaemons(const Json& daemons) {
  terminal::Table table({"DAEMON", "ENDPOINT", "REACHABLE", "STATUS", "ROUND TRIP", "MESSAGE"});
  for (const Json& it : daemons) {
    std::string trip = "-";
    if (!it["round_trip_ms"].is_null()) {
      std::ostringstream text;
      text << std::fixed << std::setprecision(1) << it["round_trip_ms"].get<double>() << " ms";
      trip = text.str();
    }
    table.Add({it["daemon"], it["endpoint"], it["reachable"] ? "yes" : "no", it["grpc_status"],
               trip, it["message"]});
  }
  return table.Text();
}

std::string ShowRoles(const Json& roles) {
  terminal::Table table({"ROLE", "INTERFACE", "ID"});
  for (const Json& it : roles)
    table.Add({it["role"], it["interface"], it["id"].is_null() ? "" : Text(it["id"])});
  return table.Text();
}

std::string ShowEnvironment(const Json& environment) {
  terminal::Table table({"VARIABLE", "VALUE"});
  for (const auto& [name, value] : environment.items())
    table.Add({name, value.is_null() ? "(not set)" : Text(value)});
  return table.Text();
}

std::string ShowDiagnosis(const Json& result) {
  terminal::Table versions({"COMPONENT", "VERSION"});
  for (const auto& [name, value] : result["versions"].items()) versions.Add({name, value});
  std::string text = ShowDaemons(result["daemons"]) + "\n" + ShowRoles(result["roles"]) + "\n" +
                     versions.Text() + "\nPTP clock: " + TextOrUnknown(result["ptp_clock"]) +
                     "\n\n" + ShowEnvironment(result["environment"]) + "\n";
  if (result["problems"].empty()) return text + "No problem found.\n";
  for (const Json& it : result["problems"])
    text += terminal::Bold("Problem: ") + Text(it["problem"]) +
            "\n  Remedy: " + Text(it["advice"]) + "\n";
  return text;
}

}  // namespace

void AddDoctor(Tool& tool) {
  tool.AddVerb(tool.Top(), "doctor",
               {"Diagnose the daemons and the environment",
                [&tool] { return Diagnose(tool); },
                ShowDiagnosis,
                {"networkgrpc doctor"}});
}

}  // namespace tool
