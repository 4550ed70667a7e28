// networkgrpc export, diff and import: the device's settable state as a document.
#include "tools/state.h"

#include <iostream>
#include <memory>

#include "state_document/document.h"
#include "state_document/save_file.h"
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

std::string DocumentText(const Json& state) {
  return terminal::EscapedInJson(state_document::ToText(state));
}

// A file that cannot be written is named before the daemons are asked.
Json Export(const std::string& file) {
  try {
    if (!file.empty()) state_document::CheckSavable(file);
    Json state = ReadState();
    if (!file.empty()) state_document::SaveFile(file, DocumentText(state));
    return state;
  } catch (const std::runtime_error& error) {
    throw Failure(ExitStatus::kFailed, error.what());
  }
}

std::string ShowDiff(const Json& result) {
  return result["equal"] ? "no difference\n" : ShowDifferences(result["differences"]);
}

}  // namespace

Json ReadStateFile(const std::string& file) {
  try {
    const auto document =
        file == "-" ? state_document::Read(std::cin, file) : state_document::ReadFile(file);
    return state_document::Settable(document.Root());
  } catch (const std::runtime_error& error) {  // the file cannot be read, or is no document
    throw Failure(ExitStatus::kFailed, error.what());
  }
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
  const auto output = std::make_shared<std::string>();
  Command exports = tool.AddVerb(
      tool.Top(), "export",
      {"Print the settable state as a JSON document",
       [output] { return Export(*output); },
       [output](const Json& state) { return output->empty() ? DocumentText(state) : ""; },
       {"networkgrpc export --output state.json"}});
  exports
      .Option("--output", "FILE", output.get(),
              "Write it to this file instead, which is replaced as a whole or not at all")
      .Offer(Candidates::kFiles);
  const auto arguments = std::make_shared<DiffArguments>();
  Command diff = tool.AddVerb(tool.Top(), "diff",
                              {"Show how a state document differs from the device",
                               [arguments] { return Diff(*arguments); },
                               ShowDiff,
                               {"networkgrpc export >state.json && networkgrpc diff state.json"}});
  diff.Argument("FILE", &arguments->file, "The document; - for standard input")
      .Offer(Candidates::kFiles);
  diff.OptionalArgument("OTHER", &arguments->other,
                        "Compare with this document, not with the device")
      .Offer(Candidates::kFiles);
  diff.Flag("--exit-code", &arguments->exit_code, "Exit with status 1 if there is a difference");
  AddImport(tool);
}

}  // namespace tool
