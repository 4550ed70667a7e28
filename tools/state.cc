// networkgrpc export, diff and import: the settable state as one document.
#include "tools/state.h"

#include <memory>

#include "tools/failure.h"
#include "tools/state_import.h"
#include "tools/tool.h"

namespace tool {
namespace {

struct DiffArguments {
  std::string file;
  std::string other;  // empty: the device
  bool exit_code = false;
};

std::string ShowDocument(const Json& document) {
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

// Members that one side lacks are settings that it leaves alone.
Json Diff(const DiffArguments& arguments) {
  const Json document = Settable(ReadStateFile(arguments.file));
  const Json other =
      arguments.other.empty() ? ReadState() : Settable(ReadStateFile(arguments.other));
  const bool against_device = arguments.other.empty();
  const Json from = against_device ? other : Merged(other, document);
  const Json to = against_device ? Merged(other, document) : Merged(document, other);
  const Json differences = ToJson(Differences("", from, to));
  const Json result = {{"equal", differences.empty()}, {"differences", differences}};
  if (arguments.exit_code && !differences.empty())
    throw Failure(ExitStatus::kFailed, "they differ").With(result);
  return result;
}

std::string ShowDiff(const Json& result) {
  return result["equal"] ? "no difference\n" : ShowDifferences(result["differences"]);
}

}  // namespace

void AddState(Tool& tool) {
  tool.AddVerb(tool.app, "export",
               {"Prints the device's settable state as one JSON document.",
                ReadState,
                ShowDocument,
                {"networkgrpc export >state.json"}});
  const auto arguments = std::make_shared<DiffArguments>();
  CLI::App& diff =
      tool.AddVerb(tool.app, "diff",
                   {"Show how a state document differs from the device",
                    [arguments] { return Diff(*arguments); },
                    ShowDiff,
                    {"networkgrpc export >state.json && networkgrpc diff state.json"}});
  tool.Offer(
      diff.add_option("FILE", arguments->file, "The document; - is standard input")->required(),
      Candidates::kFiles);
  tool.Offer(diff.add_option("OTHER", arguments->other, "Compare with this document instead"),
             Candidates::kFiles);
  diff.add_flag("--exit-code", arguments->exit_code, "Exit with 1 when they differ");
  AddImport(tool);
}

}  // namespace tool
