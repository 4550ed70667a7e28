// networkgrpc doctor: diagnoses the daemons and the environment, suggests remedies.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <iomanip>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <thread>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/tool.h"

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr Seconds kLongestProbe{5};

struct Reply {
  grpc::Status status;
  double milliseconds = 0;
};

template <class Call>
Reply Timed(Call call) {
  const auto start = Clock::now();
  Reply reply{call(), 0};
  reply.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  return reply;
}

// The first call connects; the second measures how fast the daemon replies.
Reply TimedProbe(Daemon daemon) {
  const auto call = [daemon] { return Probe(daemon); };
  const Reply first = Timed(call);
  return first.status.ok() ? Timed(call) : first;
}

// In a thread of its own: a daemon that never replies must not prevent the rest of
// the report. Empty at the limit; the thread is then left in its call.
std::optional<Reply> ProbeWithin(Tool& tool, Daemon daemon, Seconds limit) {
  const auto promise = std::make_shared<std::promise<Reply>>();
  std::future<Reply> reply = promise->get_future();
  std::thread([promise, daemon] { promise->set_value(TimedProbe(daemon)); }).detach();
  if (reply.wait_for(limit) == std::future_status::ready) return reply.get();
  tool.exit_at_once = true;
  return std::nullopt;
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

void CheckReply(Daemon daemon, const std::optional<Reply>& reply, Findings& findings) {
  const std::string where = The(daemon) + " at " + Endpoint(daemon);
  if (!reply.has_value())
    findings.Add("no reply from " + where, "restart " + The(daemon) + ", or correct the endpoint");
  else if (IsUnreachable(daemon, reply->status))
    findings.Add(where + " cannot be reached", "start " + The(daemon) + ", or set " +
                                                   EndpointSetting(daemon).variable +
                                                   " to its endpoint");
  else if (!reply->status.ok())
    findings.Add(where + " replies with an error",
                 "check the daemon's log, and whether another program listens there");
}

void CheckRoles(const Json& roles, Findings& findings) {
  for (const Json& role : roles)
    if (role["id"] == -1)
      findings.Add("no interface is named '" + role["interface"].get<std::string>() +
                       "', so the role " + role["role"].get<std::string>() + " has none",
                   "set " + role["variable"].get<std::string>() +
                       " to a name from 'networkgrpc interface list'");
}

// --- The report ------------------------------------------------------------------

Json DaemonReport(Daemon daemon, const std::optional<Reply>& reply) {
  Json report = {{"daemon", Name(daemon)}, {"endpoint", Endpoint(daemon)}};
  report["reachable"] = reply.has_value() && !IsUnreachable(daemon, reply->status);
  report["status"] =
      reply.has_value() ? Json(static_cast<int>(reply->status.error_code())) : Json();
  report["message"] = reply.has_value() ? reply->status.error_message() : "no reply";
  report["round_trip_ms"] = reply.has_value() ? Json(reply->milliseconds) : Json();
  return report;
}

Json Role(const client::Setting& setting, std::int32_t id) {
  return {{"role", setting.role},
          {"variable", setting.variable},
          {"interface", setting.Value()},
          {"id", id}};
}

Json Roles() {
  const auto& client = NetworkManagerClient::GetInstance();
  return {Role(client::kDantePrimaryInterface, client.GetDantePrimaryInterfaceID()),
          Role(client::kDanteSecondaryInterface, client.GetDanteSecondaryInterfaceID()),
          Role(client::kControlInterface, client.GetControlInterfaceID())};
}

Json Versions(bool dante_replies) {
  Json versions = {{"networkgrpc", NETWORKGRPC_VERSION}, {"software", ""}, {"firmware", ""}};
  if (!dante_replies) return versions;
  ostrevan::grpcdapi::Version version;
  auto& client = DAPIClient::GetInstance();
  if (client.GetSoftwareVersion(&version).ok()) versions["software"] = version.version();
  if (client.GetFirmwareVersion(&version).ok()) versions["firmware"] = version.version();
  return versions;
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

Json Run(Tool& tool) {
  Findings findings;
  CheckProxies(findings);
  const Seconds limit = std::min(kLongestProbe, Seconds(tool.Limit().seconds / 3));
  Json result = {{"daemons", Json::array()}};
  std::map<Daemon, bool> replies;
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDante}) {
    time_limit::Calling(daemon);
    CheckEndpoint(daemon, findings);
    const auto reply = ProbeWithin(tool, daemon, limit);
    replies[daemon] = reply.has_value() && reply->status.ok();
    CheckReply(daemon, reply, findings);
    result["daemons"].push_back(DaemonReport(daemon, reply));
  }
  result["roles"] = replies[Daemon::kNetworkManager] ? Roles() : Json::array();
  CheckRoles(result["roles"], findings);
  result["versions"] = Versions(replies[Daemon::kDante]);
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
    table.Add({it["daemon"], it["endpoint"], it["reachable"] ? "yes" : "no",
               it["status"].is_null() ? "-" : Text(it["status"]), trip, it["message"]});
  }
  return table.Text();
}

std::string ShowRoles(const Json& roles) {
  terminal::Table table({"ROLE", "INTERFACE", "ID"});
  for (const Json& it : roles) table.Add({it["role"], it["interface"], Text(it["id"])});
  return table.Text();
}

std::string ShowEnvironment(const Json& environment) {
  terminal::Table table({"VARIABLE", "VALUE"});
  for (const auto& [name, value] : environment.items())
    table.Add({name, value.is_null() ? "(not set)" : Text(value)});
  return table.Text();
}

std::string Show(const Json& result) {
  terminal::Table versions({"VERSION", ""});
  for (const auto& [name, value] : result["versions"].items()) versions.Add({name, value});
  std::string text = ShowDaemons(result["daemons"]) + "\n" + ShowRoles(result["roles"]) + "\n" +
                     versions.Text() + "\n" + ShowEnvironment(result["environment"]) + "\n";
  if (result["problems"].empty()) return text + "No problem found.\n";
  for (const Json& it : result["problems"])
    text += terminal::Bold("Problem: ") + Text(it["problem"]) +
            "\n  Remedy: " + Text(it["advice"]) + "\n";
  return text;
}

}  // namespace

void AddDoctor(Tool& tool) {
  tool.AddVerb(tool.app, "doctor",
               {"Diagnose the daemons and the environment",
                [&tool] { return Run(tool); },
                Show,
                {"networkgrpc doctor"}});
}

}  // namespace tool
