#include "tools/tool.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "terminal/arguments.h"
#include "terminal/help.h"
#include "terminal/prompt.h"
#include "tools/envelope.h"

namespace tool {
namespace {

constexpr const char* kName = "networkgrpc";

int Exit(ExitStatus status) { return static_cast<int>(status); }

// Everything at once, at the end: a command that fails half way prints nothing.
int Print(const std::string& text, ExitStatus status) {
  std::cout << text << std::flush;
  if (std::cout) return Exit(status);
  std::perror("networkgrpc: cannot write");
  return Exit(ExitStatus::kFailed);
}

// The daemons take nothing else, and the library does not look.
bool IsUtf8(const std::string& text) {
  try {
    return !Json(text).dump().empty();
  } catch (const Json::type_error&) {
    return false;
  }
}

std::string ExitStatusSection() {
  using terminal::Entry;
  return terminal::Section("Exit status",
                           Entry("0", "done") + Entry("1", "failed") +
                               Entry("2", "the command line is wrong, or --yes is missing") +
                               Entry("3", "the time limit passed") +
                               Entry("4", "the daemon rejected the request") +
                               Entry("8", "the daemon cannot be reached") +
                               Entry("10", "no such interface, channel or mode"));
}

std::string EnvironmentSection() {
  using terminal::Entry;
  return terminal::Section(
      "Environment",
      Entry("network_manager_url",
            "endpoint of the network-manager daemon; default localhost:50007") +
          Entry("grpc_dapi_url", "endpoint of the Dante API daemon; default localhost:50008") +
          Entry("dante_primary_interface_env",
                "name of the Dante primary interface; default lan0") +
          Entry("dante_secondary_interface_env",
                "name of the Dante secondary interface; default lan2") +
          Entry("control_interface_env", "name of the control interface; default lan1") +
          Entry("NO_COLOR", "if set and not empty, print without colour"));
}

}  // namespace

CLI::Validator Seconds(double least) {
  constexpr double kMost = 86400;  // a day
  return {[least](const std::string& text) -> std::string {
            char* end = nullptr;
            const double value = std::strtod(text.c_str(), &end);
            if (end != text.c_str() && *end == '\0' && value >= least && value <= kMost) return "";
            std::ostringstream wrong;
            wrong << "'" << text << "' is not a number of seconds, " << least << " to " << kMost;
            return wrong.str();
          },
          ""};
}

// The command that the command line names.
struct Tool::Found {
  const CLI::App* verb = nullptr;  // none when a noun stands alone
  std::string name;                // "interface list"
};

Tool::Tool() : app("Reads and changes the settings of a networked amplifier.", kName) {
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_help_all_flag("--help-all", "Print the help of every verb and exit");
  app.set_version_flag("--version", std::string(kName) + " " + NETWORKGRPC_VERSION,
                       "Print the version and exit");
  app.formatter(std::make_shared<terminal::Help>(
      [this](const CLI::App& command, bool all) { return MoreHelp(command, all); }));
  app.fallthrough();
  app.require_subcommand(1, 0);
  AddGlobalOptions();
}

void Tool::AddGlobalOptions() {
  app.add_flag("--json", json, "Print one JSON object instead of text");
  app.add_option("--timeout", timeout, "Give up after this time; default 30")
      ->type_name("SECONDS")
      ->check(Seconds(0.01));
  app.add_option("--network-manager", network_manager, "Where the network-manager daemon is")
      ->type_name("URL");
  app.add_option("--dapi", dapi, "Where the Dante API daemon is")->type_name("URL");
}

std::string Tool::MoreHelp(const CLI::App& command, bool all) const {
  if (&command == &app)
    return ExitStatusSection() + EnvironmentSection() +
           terminal::Examples({"networkgrpc status", "networkgrpc doctor"});
  std::vector<std::string> examples;
  const auto add = [&](const CLI::App* verb) {
    const auto found = verbs.find(verb);
    if (found == verbs.end()) return;
    const auto& more = found->second.examples;
    examples.insert(examples.end(), more.begin(), more.end());
  };
  add(&command);
  for (const CLI::App* verb : command.get_subcommands(nullptr)) add(verb);
  return (all ? ExitStatusSection() : "") + terminal::Examples(examples);
}

CLI::App& Tool::AddNoun(const std::string& name, const std::string& description,
                        const std::string& verb) {
  CLI::App& noun = *app.add_subcommand(name, description);
  verb_of_noun[&noun] = verb;
  noun.require_subcommand(verb.empty() ? 1 : 0, 1);
  return noun;
}

CLI::App& Tool::AddVerb(CLI::App& parent, const std::string& name, Verb verb) {
  CLI::App& command = *parent.add_subcommand(name, verb.description);
  verbs[&command] = std::move(verb);
  return command;
}

void Tool::AddYes(CLI::App& verb) {
  verb.add_flag("-y,--yes", yes, "Do it without asking; needed where there is no terminal");
}

void Tool::Confirm(const std::string& what, const std::string& question) {
  if (yes) return;
  if (!terminal::HasPerson())
    throw Failure(ExitStatus::kUsage,
                  what + "; there is no terminal to ask at: give --yes to do it");
  deadline::Stop();  // a person may think
  if (!terminal::AnswersYes(what + ". " + question))
    throw Failure(ExitStatus::kFailed, "nothing was changed");
  deadline::Start(Limit());
}

deadline::Limit Tool::Limit() const { return {timeout, json, Selected().name}; }

// The library reads its endpoints from the environment.
void Tool::UseEndpoints() const {
  if (!network_manager.empty())
    setenv(EndpointVariable(Daemon::kNetworkManager), network_manager.c_str(), 1);
  if (!dapi.empty()) setenv(EndpointVariable(Daemon::kDante), dapi.c_str(), 1);
}

Tool::Found Tool::Selected() const {
  Found found;
  const CLI::App* at = &app;
  while (!at->get_subcommands().empty()) {
    at = at->get_subcommands().front();
    found.name += (found.name.empty() ? "" : " ") + at->get_name();
  }
  const auto noun = verb_of_noun.find(at);
  if (noun != verb_of_noun.end() && !noun->second.empty()) {
    found.name += " " + noun->second;
    at = const_cast<CLI::App*>(at)->get_subcommand(noun->second);
  }
  if (verbs.count(at) != 0) found.verb = at;
  return found;
}

int Tool::Fail(const Found& found, const Failure& failure) const {
  deadline::Stop();
  if (json) return Print(JsonText(FailureEnvelope(found.name, failure)), failure.status);
  const bool tells = !failure.result.is_null();
  const int status = Print(tells ? verbs.at(found.verb).show(failure.result) : "", failure.status);
  std::cerr << ErrorLine(failure);
  return status;
}

int Tool::Run(const Found& found) {
  const Verb& verb = verbs.at(found.verb);
  deadline::Start(Limit());
  try {
    const Json result = verb.run();
    deadline::Stop();
    return Print(json ? JsonText(SuccessEnvelope(found.name, result)) : verb.show(result),
                 ExitStatus::kDone);
  } catch (const Failure& failure) {
    return Fail(found, failure);
  } catch (const std::exception& error) {  // out of memory, an impossible reply
    return Fail(found, {ExitStatus::kFailed, error.what()});
  }
}

int Tool::Usage(const std::string& message, bool as_json) const {
  const std::string hint = "; 'networkgrpc --help' tells what there is";
  const Failure failure(ExitStatus::kUsage, message + hint);
  if (as_json) return Print(JsonText(FailureEnvelope(Selected().name, failure)), failure.status);
  std::cerr << ErrorLine(failure);
  return Exit(failure.status);
}

int Tool::Main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  // Also a command line that cannot be parsed wants JSON, when it says so.
  const bool as_json = std::count(arguments.begin(), arguments.end(), "--json") != 0;
  for (const std::string& argument : arguments)
    if (!IsUtf8(argument)) return Usage("an argument is not UTF-8", as_json);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    return Print(app.help(), ExitStatus::kDone);
  } catch (const CLI::CallForAllHelp&) {
    return Print(app.help("", CLI::AppFormatMode::All), ExitStatus::kDone);
  } catch (const CLI::CallForVersion& version) {
    return Print(std::string(version.what()) + "\n", ExitStatus::kDone);
  } catch (const CLI::ParseError& error) {
    return Usage(terminal::Explain(app, error), as_json);
  }
  const Found found = Selected();
  if (found.verb == nullptr) return Usage("a command is required", as_json);
  UseEndpoints();
  return Run(found);
}

}  // namespace tool
