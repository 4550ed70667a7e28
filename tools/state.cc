// networkgrpc export, diff and import: the device's settable state as a document.
#include "tools/state.h"

#include <iostream>
#include <memory>

#include "state_document/document.h"
#include "terminal/printable.h"
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

std::string ValueText(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// A setting that one side lacks is not compared.
Json Diff(const DiffArguments& arguments) {
  const Json document = ReadStateFile(arguments.file);
  const Json other = arguments.other.empty() ? ReadState() : ReadStateFile(arguments.other);
  const bool against_device = arguments.other.empty();
  const Json from = against_device ? other : Merged(other, document);
  const Json to = against_device ? Merged(other, document) : Merged(document, other);
  const Json differences = ToJson(Differences("", from, to));
  const Json result = {{"equal", differences.empty()}, {"differences", differences}};
  if (arguments.exit_code && !differences.empty())
    throw Failure(ExitStatus::kFailed,
                  against_device ? "the device differs from the document" : "the documents differ")
        .With(result);
  return result;
}

std::string ShowDiff(const Json& result) {
  return result["equal"] ? "no difference\n" : ShowDifferences(result["differences"]);
}

}  // namespace

Json ReadStateFile(const std::string& file) {
  const auto document =
      file == "-" ? state_document::Read(std::cin, file) : state_document::ReadFile(file);
  return state_document::Settable(document.Root());
}

std::string ShowDifferences(const Json& differences) {
  std::string text;
  for (const Json& it : differences)
    text += terminal::Printable(it["path"].get<std::string>() + ": " + ValueText(it["from"]) +
                                " -> " + ValueText(it["to"])) +
            "\n";
  return text;
}

void AddState(Tool& tool) {
  tool.AddVerb(tool.app, "export",
               {"Print the settable state as a JSON document",
                ReadState,
                state_document::ToText,
                {"networkgrpc export >state.json"}});
  const auto arguments = std::make_shared<DiffArguments>();
  CLI::App& diff =
      tool.AddVerb(tool.app, "diff",
                   {"Show how a state document differs from the device",
                    [arguments] { return Diff(*arguments); },
                    ShowDiff,
                    {"networkgrpc export >state.json && networkgrpc diff state.json"}});
  tool.Offer(
      diff.add_option("FILE", arguments->file, "The document; - for standard input")->required(),
      Candidates::kFiles);
  tool.Offer(
      diff.add_option("OTHER", arguments->other, "Compare with this document, not with the device"),
      Candidates::kFiles);
  diff.add_flag("--exit-code", arguments->exit_code, "Exit with status 1 if there is a difference");
  AddImport(tool);
}

}  // namespace tool
