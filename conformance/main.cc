// networkgrpc-conformance: checks whether the two daemons do what the library expects.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>

#include "NetworkgRPC_version.h"
#include "client/environment.h"
#include "conformance/report.h"
#include "conformance/run.h"
#include "terminal/arenas.h"
#include "terminal/arguments.h"
#include "terminal/help.h"
#include "terminal/printable.h"
#include "terminal/progress.h"
#include "tools/call_options.h"
#include "tools/failure.h"
#include "tools/interrupt.h"
#include "tools/probe.h"
#include "tools/rescuer.h"

namespace {

using conformance::Checks;
using conformance::Outcome;
using tool::Daemon;
using tool::ExitStatus;
using tool::Failure;

constexpr const char* kName = "networkgrpc-conformance";

struct Options {
  std::string network_manager;
  std::string dapi;
  std::string profile = "all";
  std::vector<std::string> only;
  std::string junit;
  bool json = false;
  bool list = false;
  conformance::Limits limits;
  conformance::Permissions permissions;
};

std::string MoreHelp(const CLI::App&, bool) {
  using terminal::Entry;
  return terminal::Section(
             "Exit status",
             Entry("0", "every check that was made has passed") +
                 Entry("1", "a check failed, none was made, or what was before is not restored") +
                 Entry("2", "the command line is wrong") +
                 Entry("8", "a daemon cannot be reached; nothing was checked")) +
         terminal::Section(
             "Environment",
             Entry(client::kNetworkManagerUrl.variable,
                   std::string(client::kNetworkManagerUrl.meaning) + "; default " +
                       client::kNetworkManagerUrl.fallback) +
                 Entry(client::kDapiUrl.variable, std::string(client::kDapiUrl.meaning) +
                                                      "; default " + client::kDapiUrl.fallback)) +
         terminal::Examples({"networkgrpc-conformance --read-only",
                             "networkgrpc-conformance --profile dante --junit results.xml",
                             "networkgrpc-conformance --only settings,reload.Address --json"});
}

void Describe(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<terminal::Help>(MoreHelp));
  app.set_version_flag("-V,--version", std::string(kName) + " " + NETWORKGRPC_VERSION,
                       "Print the version and exit");
  app.add_option("--network-manager", options.network_manager,
                 "Endpoint of the network-manager daemon")
      ->type_name("ENDPOINT");
  app.add_option("--dapi", options.dapi, "Endpoint of the Dante API daemon")->type_name("ENDPOINT");
  app.add_option("--profile", options.profile,
                 "The daemons to check: networkmanager, dante, or all, the default")
      ->check(terminal::OneOf({"networkmanager", "dante", "all"}))
      ->type_name("PROFILE");
  app.add_option_function<std::string>(
         "--only",
         [&options](const std::string& names) {
           std::istringstream words(names);
           for (std::string name; std::getline(words, name, ',');) options.only.push_back(name);
         },
         "Make only these checks, or groups of checks")
      ->type_name("NAME[,NAME]...");
  app.add_flag("--list", options.list, "List the checks and exit");
  app.add_flag("--read-only", options.permissions.read_only, "Change nothing on the device");
  app.add_flag("--factory-reset", options.permissions.factory_reset,
               "Also reset the network settings; not all can be restored then");
  app.add_option("--restart", options.limits.restart,
                 "Also check that the daemons are back after this shell command, which restarts "
                 "them")
      ->type_name("COMMAND");
  app.add_option("--timeout", options.limits.timeout, "Longest time for a call; default 5")
      ->check(terminal::Seconds(0.01))
      ->type_name("SECONDS");
  app.add_option("--keepalive-seconds", options.limits.keepalive,
                 "Time for which an idle connection has to stay open; default 20, 0 to skip it")
      ->check(terminal::Seconds(0))
      ->type_name("SECONDS");
  app.add_flag("--json", options.json, "Print one JSON object instead of text");
  app.add_option("--junit", options.junit, "Also write the results to this file, as JUnit XML")
      ->type_name("FILE");
}

std::vector<Daemon> DaemonsOf(const std::string& profile) {
  if (profile == "dante") return {Daemon::kDante};
  if (profile == "networkmanager") return {Daemon::kNetworkManager};
  return {Daemon::kNetworkManager, Daemon::kDante};
}

// A check by its name, or all of a group.
bool IsIn(const std::string& check, const std::string& name) {
  return check == name || check.compare(0, name.size() + 1, name + '.') == 0;
}

Checks Choose(const Options& options) {
  const Checks all = conformance::AllChecks();
  for (const std::string& name : options.only)
    if (std::none_of(all.begin(), all.end(),
                     [&](const conformance::Check& check) { return IsIn(check.name, name); }))
      throw CLI::ValidationError("--only", "unknown check '" + name + "'; see --list");
  const std::vector<Daemon> daemons = DaemonsOf(options.profile);
  Checks chosen;
  for (const conformance::Check& check : all)
    if (std::find(daemons.begin(), daemons.end(), check.daemon) != daemons.end() &&
        (options.only.empty() ||
         std::any_of(options.only.begin(), options.only.end(),
                     [&](const std::string& name) { return IsIn(check.name, name); })))
      chosen.push_back(check);
  return chosen;
}

void RequireReachable(const std::vector<Daemon>& daemons) {
  for (const Daemon daemon : daemons) {
    const auto failure = tool::Probe(daemon).failure;
    if (failure.has_value() && failure->status == ExitStatus::kUnreachable)
      throw Failure(ExitStatus::kUnreachable,
                    tool::The(daemon) + " at " + tool::Endpoint(daemon) + " cannot be reached");
  }
}

int Report(ExitStatus status, const std::string& message) {
  std::cerr << std::string(kName) + ": " + terminal::Printable(message) + '\n';
  return static_cast<int>(status);
}

int Conclude(const Options& options, const conformance::Run& run) {
  std::vector<std::string> problems;
  std::cout << (options.json ? JsonReport(run) : TextReport(run)) << std::flush;
  if (!std::cout) problems.emplace_back("cannot write to standard output");
  if (!options.junit.empty()) {
    std::ofstream file(options.junit);
    if (!(file << JunitReport(run)).flush())
      problems.push_back("cannot write '" + options.junit + "'");
  }
  if (!run.not_restored.empty()) problems.push_back(run.not_restored);
  for (const std::string& problem : problems) Report(ExitStatus::kFailed, problem);
  const bool has_passed = problems.empty() && !run.is_interrupted &&
                          run.Count(Outcome::kFailed) == 0 && run.Count(Outcome::kPassed) > 0;
  return static_cast<int>(has_passed ? ExitStatus::kDone : ExitStatus::kFailed);
}

int CheckDevice(const Options& options, const Checks& checks) {
  const std::vector<Daemon> daemons = DaemonsOf(options.profile);
  for (const auto& [daemon, endpoint] :
       {std::pair(Daemon::kNetworkManager, options.network_manager),
        std::pair(Daemon::kDante, options.dapi)})
    if (!endpoint.empty()) tool::SetEndpoint(daemon, endpoint, endpoint);
  tool::CallOptions calls;
  calls.timeout = options.limits.timeout;
  tool::SetCallOptions(calls);
  RequireReachable(daemons);
  const tool::interrupt::Handler restores_before_the_end;
  conformance::Session session(options.limits, daemons);
  conformance::Run run;
  {
    terminal::Progress progress("checking", checks.size());
    run = RunChecks(checks, session, options.permissions, [&] { progress.Step(); });
  }
  return Conclude(options, run);
}

}  // namespace

int main(int argc, char** argv) {
  terminal::FixNumberOfArenas();
  // The process that restores if this one cannot.
  if (argc == 3 && argv[1] == std::string(tool::kRescuerCommand)) return tool::RunRescuer(argv[2]);
  std::signal(SIGXFSZ, SIG_IGN);
  CLI::App app("Check whether daemons do what the library expects", kName);
  Options options;
  int status = 0;
  Describe(app, options);
  try {
    app.parse(argc, argv);
    const Checks checks = Choose(options);
    if (options.list) {
      std::cout << conformance::List(checks) << std::flush;
      return 0;
    }
    tool::interrupt::Watch();
    status = CheckDevice(options, checks);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return app.exit(error);
    return Report(ExitStatus::kUsage,
                  terminal::Explain(app, error) + "; see '" + kName + " --help'");
  } catch (const Failure& failure) {
    status = Report(failure.status, failure.message);
  }
  // Otherwise gRPC 1.51 now and then waits 10 s for its own threads.
  std::_Exit(status);
}
