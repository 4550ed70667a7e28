#include "conformance/report.h"

#include <cstdio>
#include <map>

#include "NetworkgRPC_version.h"
#include "terminal/printable.h"
#include "terminal/table.h"
#include "tools/output.h"

namespace conformance {
namespace {

constexpr std::size_t kMostOfText = 400;  // bytes of a call, for people
constexpr std::size_t kMostCalls = 6;     // for people: the latest

const char* Name(Outcome outcome) {
  return outcome == Outcome::kPassed   ? "passed"
         : outcome == Outcome::kFailed ? "failed"
                                       : "skipped";
}

// The part of the name before the first dot.
std::string GroupOf(const Check& check) { return check.name.substr(0, check.name.find('.')); }

std::string Groups(const Run& run) {
  std::vector<std::string> names;
  std::map<std::string, std::map<Outcome, int>> counts;
  for (const Result& result : run.results) {
    const std::string group = GroupOf(*result.check);
    if (counts.count(group) == 0) names.push_back(group);
    ++counts[group][result.outcome];
  }
  terminal::Table table({"GROUP", "PASSED", "FAILED", "SKIPPED"});
  for (const std::string& name : names) {
    auto& of = counts[name];
    table.Add({name, std::to_string(of[Outcome::kPassed]), std::to_string(of[Outcome::kFailed]),
               std::to_string(of[Outcome::kSkipped])});
  }
  return table.Text();
}

// What failed, one thing a line.
std::string Details(const Result& result, std::size_t most_calls, std::size_t most_bytes) {
  std::string text;
  const auto add = [&](const char* what, const std::string& value) {
    text += std::string("  ") + what + terminal::Printable(value) + '\n';
  };
  add("problem   ", result.why);
  add("expected  ", result.check->expected);
  const std::size_t calls = result.exchanges.size();
  for (std::size_t i = calls > most_calls ? calls - most_calls : 0; i < calls; ++i) {
    add("sent      ", Short(result.exchanges[i].sent, most_bytes));
    add("received  ", Short(result.exchanges[i].came, most_bytes));
  }
  add("to do     ", result.check->advice);
  return text;
}

std::string Summary(const Run& run) {
  std::string text = std::to_string(run.Count(Outcome::kPassed)) + " passed, " +
                     std::to_string(run.Count(Outcome::kFailed)) + " failed, " +
                     std::to_string(run.Count(Outcome::kSkipped)) + " skipped\n";
  if (run.is_interrupted) text += "interrupted: the checks that follow were not made\n";
  return text;
}

std::string Xml(const std::string& text) {
  std::string escaped;
  for (const char character : text) switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\n':
        escaped += "&#10;";
        break;
      default:
        escaped += character;
    }
  return escaped;
}

std::string Attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + Xml(value) + '"';
}

std::string InSeconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", seconds);
  return text;
}

}  // namespace

std::string TextReport(const Run& run) {
  std::string text = Groups(run);
  for (const Result& result : run.results)
    if (result.outcome == Outcome::kFailed)
      text += "\n" + terminal::Bold("failed: " + result.check->name) + "\n" +
              Details(result, kMostCalls, kMostOfText);
  terminal::Table skipped({"SKIPPED", "REASON"});
  for (const Result& result : run.results)
    if (result.outcome == Outcome::kSkipped) skipped.Add({result.check->name, result.why});
  if (run.Count(Outcome::kSkipped) > 0) text += "\n" + skipped.Text();
  return text + "\n" + Summary(run);
}

std::string JsonReport(const Run& run) {
  Json checks = Json::array();
  double seconds = 0;
  for (const Result& result : run.results) {
    seconds += result.seconds;
    Json check = {{"name", result.check->name},
                  {"daemon", tool::Name(result.check->daemon)},
                  {"outcome", Name(result.outcome)},
                  {"seconds", result.seconds},
                  {"expected", result.check->expected}};
    if (result.outcome == Outcome::kSkipped) check["reason"] = result.why;
    if (result.outcome == Outcome::kFailed) {
      check["problem"] = result.why;
      check["advice"] = result.check->advice;
      check["calls"] = Json::array();
      for (const Exchange& call : result.exchanges)
        check["calls"].push_back({{"sent", call.sent}, {"received", call.came}});
    }
    checks.push_back(std::move(check));
  }
  return tool::JsonText({{"schema", 1},
                         {"version", NETWORKGRPC_VERSION},
                         {"network_manager", tool::Endpoint(tool::Daemon::kNetworkManager)},
                         {"dapi", tool::Endpoint(tool::Daemon::kDante)},
                         {"passed", run.Count(Outcome::kPassed)},
                         {"failed", run.Count(Outcome::kFailed)},
                         {"skipped", run.Count(Outcome::kSkipped)},
                         {"interrupted", run.is_interrupted},
                         {"restored", run.not_restored.empty()},
                         {"seconds", seconds},
                         {"checks", checks}});
}

std::string JunitReport(const Run& run) {
  double seconds = 0;
  std::string cases;
  for (const Result& result : run.results) {
    seconds += result.seconds;
    const std::string group = GroupOf(*result.check);
    cases += "  <testcase" + Attribute("classname", group) +
             Attribute("name", result.check->name.substr(group.size() + 1)) +
             Attribute("time", InSeconds(result.seconds));
    const std::string why = Attribute("message", terminal::Printable(result.why));
    if (result.outcome == Outcome::kPassed)
      cases += "/>\n";
    else if (result.outcome == Outcome::kSkipped)
      cases += "><skipped" + why + "/></testcase>\n";
    else
      cases += "><failure" + why + '>' + Xml(Details(result, result.exchanges.size(), SIZE_MAX)) +
               "</failure></testcase>\n";
  }
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite" +
         Attribute("name", "networkgrpc-conformance") +
         Attribute("tests", std::to_string(run.results.size())) +
         Attribute("failures", std::to_string(run.Count(Outcome::kFailed))) +
         Attribute("skipped", std::to_string(run.Count(Outcome::kSkipped))) +
         Attribute("time", InSeconds(seconds)) + ">\n" + cases + "</testsuite>\n";
}

std::string List(const Checks& checks) {
  terminal::Table table;
  for (const Check& check : checks) table.Add({check.name, check.expected});
  return table.Text();
}

}  // namespace conformance
