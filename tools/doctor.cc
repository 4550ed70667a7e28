// networkgrpc doctor: why nothing works, and what to do about it.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <iomanip>
#include <memory>
#include <optional>
#include <sstream>
#include <thread>

#include "DAPIClient.h"
#include "NetworkManagerClient.h"
#include "terminal/printable.h"
#include "terminal/table.h"
#include "tools/call.h"
#include "tools/tool.h"

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestProbe{5};

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

// The first call connects; the second tells how quick the daemon is.
Reply Ask(Daemon daemon) {
  const auto call = [daemon] {
    if (daemon == Daemon::kDante) {
      ostrevan::grpcdapi::Name name;
      return DAPIClient::GetInstance().GetName(&name);
    }
    ostrevan::networkmanager::Hostname hostname;
    return NetworkManagerClient::GetInstance().GetHostname(&hostname);
  };
  const Reply first = Timed(call);
  return first.status.ok() ? Timed(call) : first;
}

// In a thread of its own: a daemon that never answers must not keep the other
// things from being told. None when the time is up; the thread is then left in
// its call.
std::optional<Reply> AskWithin(Tool& tool, Daemon daemon, std::chrono::duration<double> limit) {
  const auto promise = std::make_shared<std::promise<Reply>>();
  std::future<Reply> answer = promise->get_future();
  std::thread([promise, daemon] { promise->set_value(Ask(daemon)); }).detach();
  if (answer.wait_for(limit) == std::future_status::ready) return answer.get();
  tool.leave_at_once = true;
  return std::nullopt;
}

Json Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? Json(value) : Json(nullptr);
}

const std::vector<const char*>& Variables() {
  static const std::vector<const char*> names = {"network_manager_url",
                                                 "grpc_dapi_url",
                                                 "dante_primary_interface_env",
                                                 "dante_secondary_interface_env",
                                                 "control_interface_env",
                                                 "http_proxy",
                                                 "https_proxy",
                                                 "grpc_proxy",
                                                 "no_grpc_proxy",
                                                 "no_proxy"};
  return names;
}

// --- What is wrong, in words -----------------------------------------------------

class Findings {
 public:
  void Add(const std::string& problem, const std::string& advice) {
    list.push_back({{"problem", problem}, {"advice", advice}});
  }
  const Json& List() const { return list; }

 private:
  Json list = Json::array();
};

// gRPC takes the first proxy variable that is set, and then no_grpc_proxy or
// else no_proxy; all in lower case only.
void JudgeProxies(Findings& findings) {
  for (const char* proxy : {"grpc_proxy", "https_proxy", "http_proxy"}) {
    const char* value = std::getenv(proxy);
    if (value == nullptr || *value == '\0') continue;
    const char* exempt = std::getenv("no_grpc_proxy");
    if (exempt == nullptr) exempt = std::getenv("no_proxy");
    const std::string hosts = exempt != nullptr ? exempt : "";
    if (hosts.find("localhost") != std::string::npos &&
        hosts.find("127.0.0.1") != std::string::npos)
      return;
    findings.Add(std::string(proxy) + " is set: calls to daemons on this machine go to the proxy",
                 "unset it, or set no_grpc_proxy=localhost,127.0.0.1,::1");
    return;
  }
}

void JudgeEndpoint(Daemon daemon, Findings& findings) {
  const std::string endpoint = Endpoint(daemon);
  const char* variable = EndpointVariable(daemon);
  const std::string form = "use host:port, ipv4:address:port or unix:path";
  if (endpoint.empty())
    findings.Add(std::string(variable) + " is set, but empty", "unset it, or " + form);
  else if (endpoint.find("://") != std::string::npos && endpoint.rfind("dns://", 0) != 0 &&
           endpoint.rfind("unix://", 0) != 0)
    findings.Add(std::string(variable) + " is a web address", form);
  else if (endpoint.find(':') == std::string::npos)
    findings.Add(std::string(variable) + " names no port", form);
}

void JudgeReply(Daemon daemon, const std::optional<Reply>& reply, Findings& findings) {
  const std::string who = std::string("the ") + Name(daemon) + " daemon";
  const std::string where = who + " at " + Endpoint(daemon);
  if (!reply.has_value())
    findings.Add(where + " takes calls, but does not answer them",
                 "restart " + who + "; its calls have no limit of their own");
  else if (IsOutOfReach(daemon, reply->status))
    findings.Add(where + " cannot be reached",
                 "start " + who + ", or set " + EndpointVariable(daemon) + " to where it listens");
  else if (!reply->status.ok())
    findings.Add(where + " answers with an error",
                 "see whether something else listens there, and the daemon's own log");
}

void JudgeRoles(const Json& roles, Findings& findings) {
  for (const Json& role : roles)
    if (role["id"] == -1)
      findings.Add("no interface is called '" + role["interface"].get<std::string>() +
                       "', so the role " + role["role"].get<std::string>() + " has none",
                   "set " + role["variable"].get<std::string>() +
                       " to a name of 'networkgrpc interface list'");
}

// --- The report ------------------------------------------------------------------

Json DaemonReport(Daemon daemon, const std::optional<Reply>& reply) {
  Json report = {{"daemon", Name(daemon)}, {"endpoint", Endpoint(daemon)}};
  report["reachable"] = reply.has_value() && !IsOutOfReach(daemon, reply->status);
  report["status"] =
      reply.has_value() ? Json(static_cast<int>(reply->status.error_code())) : Json();
  report["message"] = reply.has_value() ? reply->status.error_message() : "no answer";
  report["round_trip_ms"] = reply.has_value() ? Json(reply->milliseconds) : Json();
  return report;
}

Json Role(const char* role, const char* variable, const char* fallback, std::int32_t id) {
  const char* name = std::getenv(variable);
  return {{"role", role},
          {"variable", variable},
          {"interface", name != nullptr ? name : fallback},
          {"id", id}};
}

Json Roles() {
  const auto& client = NetworkManagerClient::GetInstance();
  return {Role("dante-primary", "dante_primary_interface_env", "lan0",
               client.GetDantePrimaryInterfaceID()),
          Role("dante-secondary", "dante_secondary_interface_env", "lan2",
               client.GetDanteSecondaryInterfaceID()),
          Role("control", "control_interface_env", "lan1", client.GetControlInterfaceID())};
}

Json Versions(bool dante_answers) {
  Json versions = {{"networkgrpc", NETWORKGRPC_VERSION}, {"software", ""}, {"firmware", ""}};
  if (!dante_answers) return versions;
  ostrevan::grpcdapi::Version version;
  auto& client = DAPIClient::GetInstance();
  if (client.GetSoftwareVersion(&version).ok()) versions["software"] = version.version();
  if (client.GetFirmwareVersion(&version).ok()) versions["firmware"] = version.version();
  return versions;
}

// The worst comes first: a daemon out of reach explains the rest.
[[noreturn]] void Throw(const Json& result) {
  const std::string message =
      result["problems"].size() == 1
          ? "there is a problem"
          : "there are " + std::to_string(result["problems"].size()) + " problems";
  for (const Json& daemon : result["daemons"])
    if (!daemon["reachable"])
      throw Failure(
          ExitStatus::kUnreachable, message,
          daemon["daemon"] == Name(Daemon::kDante) ? Daemon::kDante : Daemon::kNetworkManager)
          .With(result);
  throw Failure(ExitStatus::kFailed, message).With(result);
}

Json Run(Tool& tool) {
  Findings findings;
  JudgeProxies(findings);
  const std::chrono::duration<double> limit = std::min<std::chrono::duration<double>>(
      kLongestProbe, std::chrono::duration<double>(tool.Limit().seconds / 3));
  Json result = {{"daemons", Json::array()}};
  bool resolved = false;
  bool dante_answers = false;
  for (const Daemon daemon : {Daemon::kNetworkManager, Daemon::kDante}) {
    deadline::Asking(daemon);
    JudgeEndpoint(daemon, findings);
    const auto reply = AskWithin(tool, daemon, limit);
    const bool answers = reply.has_value() && reply->status.ok();
    (daemon == Daemon::kDante ? dante_answers : resolved) = answers;
    JudgeReply(daemon, reply, findings);
    result["daemons"].push_back(DaemonReport(daemon, reply));
  }
  result["roles"] = resolved ? Roles() : Json::array();
  JudgeRoles(result["roles"], findings);
  result["versions"] = Versions(dante_answers);
  result["environment"] = Json::object();
  for (const char* name : Variables()) result["environment"][name] = Variable(name);
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
               it["status"].is_null() ? "-" : it["status"].dump(), trip, it["message"]});
  }
  return table.Text();
}

std::string ShowRoles(const Json& roles) {
  terminal::Table table({"ROLE", "INTERFACE", "ID"});
  for (const Json& it : roles) table.Add({it["role"], it["interface"], it["id"].dump()});
  return table.Text();
}

std::string ShowEnvironment(const Json& environment) {
  terminal::Table table({"VARIABLE", "VALUE"});
  for (const auto& [name, value] : environment.items())
    table.Add({name, value.is_null() ? "(not set)" : value.get<std::string>()});
  return table.Text();
}

std::string Show(const Json& result) {
  terminal::Table versions({"VERSION", ""});
  for (const auto& [name, value] : result["versions"].items()) versions.Add({name, value});
  std::string text = ShowDaemons(result["daemons"]) + "\n" + ShowRoles(result["roles"]) + "\n" +
                     versions.Text() + "\n" + ShowEnvironment(result["environment"]) + "\n";
  if (result["problems"].empty()) return text + "Nothing is wrong.\n";
  for (const Json& it : result["problems"])
    text += terminal::Bold("Problem: ") + terminal::Printable(it["problem"].get<std::string>()) +
            "\n  Do: " + terminal::Printable(it["advice"].get<std::string>()) + "\n";
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
