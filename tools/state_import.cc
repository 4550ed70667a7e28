#include "tools/state_import.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

#include "terminal/progress.h"
#include "tools/call.h"
#include "tools/interrupt.h"
#include "tools/pending.h"
#include "tools/state.h"
#include "tools/state_plan.h"
#include "tools/state_selection.h"

namespace tool {
namespace {

constexpr const char* kDocument = "the document";

struct ImportArguments {
  std::string file;
  std::vector<std::string> only;
  bool skip_missing = false;
  bool dry_run = false;
  bool reload = false;
};

Json Reason(const std::string& path, const std::string& reason) {
  return {{"path", path}, {"reason", reason}};
}

std::string ShowReasons(const std::string& heading, const Json& list) {
  std::string text;
  for (const Json& it : list) text += heading + Text(it["path"]) + ": " + Text(it["reason"]) + "\n";
  return text;
}

std::string ShowPaths(const std::string& heading, const Json& paths) {
  std::string text;
  for (const Json& path : paths) text += heading + Text(path) + "\n";
  return text;
}

bool Contains(const Json& list, const std::string& path) {
  return std::find(list.begin(), list.end(), path) != list.end();
}

// An import, and what has become of each of its steps.
class Importer {
 public:
  Importer(const ChangeSet& changes, bool with_reload, bool skip_missing = false)
      : reload(with_reload), read(changes.read), subject(changes.subject) {
    Json document = changes.document;
    const Json current = read();
    std::vector<std::string> skipped;
    if (skip_missing) skipped = RemoveMissing(document, current);
    wanted = Merged(current, document);
    steps = Plan(current, wanted);
    if (reload) pending = PendingNetworkSettings();
    result = {{"differences", Json::array()},
              {"applied", Json::array()},
              {"stored", Json::array()},
              {"unknown", Json::array()},
              {"not_applied", Json::array()},
              {"skipped", skipped},
              {"remaining", Json::array()},
              {"reloaded", false},
              {"verified", false}};
    for (const Step& step : steps) {
      for (const Json& it : ToJson(Differences(step.path, step.from, step.to)))
        result["differences"].push_back(it);
      if (step.from.is_null()) NotApplied(step, "not found on the device");
    }
  }

  bool IsNeeded() const { return !steps.empty() || !pending.empty(); }

  std::string PlanText() const {
    return (steps.empty() ? "" : "Differences:\n" + ShowDifferences(result["differences"])) +
           ShowReasons("cannot be applied: ", result["not_applied"]) +
           ShowPaths("skipped: ", result["skipped"]);
  }

  std::vector<std::string> Question() const {
    std::vector<std::string> changed;
    for (const Step& step : steps) changed.push_back(step.path);
    std::vector<std::string> lines = AlsoApplied(pending, changed);
    if (!steps.empty()) lines.insert(lines.begin(), "the device will be changed");
    return lines;
  }

  Json DryRun() const {
    if (!result["not_applied"].empty())
      throw Failure(ExitStatus::kFailed,
                    "the device does not have all that the document names; "
                    "--skip-missing leaves that out")
          .With(result);
    return result;
  }

  /// Reports whatever ends it: a signal ends it between two calls.
  Json Run() {
    const interrupt::Handler handler;
    {
      terminal::Progress progress("setting", steps.size());
      for (const Step& step : steps) {
        if (!step.from.is_null()) Do(step);
        progress.Step();
      }
    }
    if (reload) Reload(Effect::kNtpReload, false, ReloadNtp);
    if (reload) Reload(Effect::kNetworkReload, !pending.empty(), ReloadNetwork);
    if (!failure.has_value()) Verify();
    if (failure.has_value()) throw failure->With(result);
    return result;
  }

 private:
  void NotApplied(const Step& step, const std::string& reason) {
    result["not_applied"].push_back(Reason(step.path, reason));
  }

  void Do(const Step& step) {
    if (failure.has_value()) return NotApplied(step, "not tried");
    try {
      step.set();
      result[step.effect == Effect::kAtOnce ? "applied" : "stored"].push_back(step.path);
    } catch (const Failure& it) {
      const bool is_known = it.outcome == Outcome::kNotDone;
      result[is_known ? "not_applied" : "unknown"].push_back(Reason(step.path, it.message));
      Stop(it, "");
    }
  }

  // Not if nothing waits for it.
  void Reload(Effect effect, bool is_pending, const std::function<void()>& call) {
    Json waiting = Json::array();
    for (const Step& step : steps)
      if (step.effect == effect && Contains(result["stored"], step.path))
        waiting.push_back(step.path);
    if (failure.has_value() || (waiting.empty() && !is_pending)) return;
    try {
      call();
      result["reloaded"] = true;
      for (const Json& path : waiting) {
        Json& stored = result["stored"];
        stored.erase(std::find(stored.begin(), stored.end(), path));
        result["applied"].push_back(path);
      }
    } catch (const Failure& it) {
      Stop(it,
           it.outcome == Outcome::kNotDone ? "stored, not applied: " : "stored, perhaps applied: ");
    }
  }

  void Verify() {
    try {
      const auto remaining = Differences("", read(), wanted);
      result["remaining"] = ToJson(remaining);
      result["verified"] = remaining.empty();
      if (!remaining.empty())
        Stop({ExitStatus::kFailed, "the device differs from " + subject}, "not verified: ");
    } catch (const Failure& it) {
      Stop(it, "not verified: ");
      if (HasChanged()) failure->outcome = Outcome::kUnknown;
    }
  }

  bool HasChanged() const { return !result["applied"].empty() || !result["stored"].empty(); }

  void Stop(const Failure& it, const std::string& prefix) {
    failure = it;
    failure->message.insert(0, prefix);
    if (it.outcome == Outcome::kNotDone && HasChanged()) failure->outcome = Outcome::kPartly;
  }

  bool reload;
  std::function<Json()> read;
  std::string subject;
  Json wanted;
  std::vector<Step> steps;
  std::vector<PendingSetting> pending;  // before the import, if there is to be a reload
  Json result;
  std::optional<Failure> failure;
};

Json Run(Tool& tool, Importer& importer) {
  if (importer.IsNeeded()) {
    if (!tool.quiet || !tool.yes) std::cerr << importer.PlanText();
    tool.Confirm(importer.Question());
  }
  return importer.Run();
}

Json ImportFile(Tool& tool, const ImportArguments& arguments) {
  Json document = ReadStateFile(arguments.file);
  if (!arguments.only.empty()) document = Selected(document, arguments.only);
  Importer importer({document, ReadState, kDocument}, arguments.reload, arguments.skip_missing);
  if (!arguments.dry_run) return Run(tool, importer);
  for (const std::string& line : importer.Question()) std::cerr << terminal::Printable(line) + "\n";
  return importer.DryRun();
}

std::string ShowDryRun(const Json& result) {
  const std::string text = ShowDifferences(result["differences"]) +
                           ShowReasons("not applied  ", result["not_applied"]) +
                           ShowPaths("skipped      ", result["skipped"]);
  return result["differences"].empty() ? text + "no difference\n" : text;
}

}  // namespace

Json Import(Tool& tool, const ChangeSet& changes) {
  Importer importer(changes, false);
  return Run(tool, importer);
}

std::string ShowImport(const Json& result, const std::string& subject) {
  std::string text = ShowPaths("applied      ", result["applied"]) +
                     ShowPaths("stored       ", result["stored"]) +
                     ShowReasons("not known    ", result["unknown"]) +
                     ShowReasons("not applied  ", result["not_applied"]) +
                     ShowPaths("skipped      ", result["skipped"]);
  for (const Json& it : result["remaining"])
    text += "differs      " + ShowDifferences(Json::array({it}));
  if (result["reloaded"]) text += "the stored network configuration is applied\n";
  if (!result["verified"]) return text;
  return text + "the device matches " + subject + "\n";
}

void AddImport(Tool& tool) {
  const auto arguments = std::make_shared<ImportArguments>();
  Command verb = tool.AddVerb(
      tool.Top(), "import",
      {"Apply a state document to the device",
       [&tool, arguments] { return ImportFile(tool, *arguments); },
       [arguments](const Json& result) {
         return arguments->dry_run ? ShowDryRun(result) : ShowImport(result, kDocument);
       },
       {"networkgrpc export >state.json && networkgrpc import state.json --yes",
        "networkgrpc export >s.json && networkgrpc import s.json --only dante --yes"}});
  verb.Argument("FILE", &arguments->file, "The document; - for standard input")
      .Offer(Candidates::kFiles);
  verb.Option("--only", "PATH", &arguments->only,
              "Apply only the settings at this path, such as dante.routing or "
              "dante.tx_channels[1]; can be repeated");
  verb.Flag("--skip-missing", &arguments->skip_missing,
            "Leave out the interfaces and channels that the device does not have");
  verb.Flag("--dry-run", &arguments->dry_run, "Show what would be changed, and change nothing");
  verb.Flag("--reload", &arguments->reload, "Apply the stored network configuration at the end");
  tool.AddYes(verb);
  tool.Undoable(verb, Daemon::kNone);
}

}  // namespace tool
