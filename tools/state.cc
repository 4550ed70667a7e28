// networkgrpc export, diff and import: the device's settable state as a document.
#include "tools/state.h"

#include <iostream>
#include <memory>
#include <optional>

#include "state_document/document.h"
#include "state_document/save_file.h"
#include "terminal/printable.h"
#include "tools/commands.h"
#include "tools/devices.h"
#include "tools/each_device.h"
#include "tools/failure.h"
#include "tools/state_import.h"

namespace tool {
namespace {

struct DiffArguments {
  std::string file;
  std::string other;  // empty: the device
  std::optional<std::string> with;
  bool exit_code = false;
};

std::string ValueText(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Of a device of the file of devices, read by a process of its own.
Json StateOf(const std::string& name, double timeout) {
  const std::vector<Device> devices = FindDevices(name);
  if (devices.size() != 1) throw Failure(ExitStatus::kUsage, "--with accepts one device");
  const Ended ended =
      RunOn(devices.front().name, {"export", "--json", "--timeout", std::to_string(timeout)});
  std::cerr << ended.errors;
  const Json object = Json::parse(ended.output, nullptr, false);
  if (object.is_object() && object.contains("result")) return object["result"];
  if (!object.is_object() || !object.contains("error"))
    throw Failure(ExitStatus::kFailed, "cannot read the state of '" + name + "'");
  throw Failure(static_cast<ExitStatus>(object["error"]["code"].get<int>()),
                name + ": " + object["error"]["message"].get<std::string>());
}

Json DiffResult(const Json& from, const Json& to, const DiffArguments& arguments,
                const std::string& what_differs) {
  const Json differences = ToJson(Differences("", from, to));
  const Json result = {{"equal", differences.empty()}, {"differences", differences}};
  if (arguments.exit_code && !differences.empty())
    throw Failure(ExitStatus::kFailed, what_differs).With(result);
  return result;
}

// A setting that a document lacks is not compared; devices are compared in full.
Json Diff(const DiffArguments& arguments, double timeout) {
  if (arguments.with.has_value() != arguments.file.empty())
    throw Failure(ExitStatus::kUsage, "either FILE or --with NAME is required");
  if (arguments.with.has_value())
    return DiffResult(ReadState(), StateOf(*arguments.with, timeout), arguments,
                      "the devices differ");
  const Json document = ReadStateFile(arguments.file);
  const Json other = arguments.other.empty() ? ReadState() : ReadStateFile(arguments.other);
  const bool against_device = arguments.other.empty();
  const Json from = against_device ? other : Merged(other, document);
  const Json to = against_device ? Merged(other, document) : Merged(document, other);
  return DiffResult(
      from, to, arguments,
      against_device ? "the device differs from the document" : "the documents differ");
}

std::string DocumentText(const Json& state) {
  return terminal::EscapedInJson(state_document::ToText(state));
}

std::string ShowDiff(const Json& result) {
  return result["equal"] ? "no difference\n" : ShowDifferences(result["differences"]);
}

}  // namespace

Json SavedTo(const std::string& file, const std::function<Json()>& read, const ToText& text) {
  try {
    if (!file.empty()) state_document::CheckSavable(file);
    Json result = read();
    if (!file.empty()) state_document::SaveFile(file, text(result));
    return result;
  } catch (const std::runtime_error& error) {
    throw Failure(ExitStatus::kFailed, error.what());
  }
}

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
       [output] { return SavedTo(*output, ReadState, DocumentText); },
       [output](const Json& state) { return output->empty() ? DocumentText(state) : ""; },
       {"networkgrpc export --output state.json"}});
  exports
      .Option("--output", "FILE", output.get(),
              "Write it to this file instead, which is replaced as a whole or not at all")
      .Offer(Candidates::kFiles);
  const auto arguments = std::make_shared<DiffArguments>();
  Command diff = tool.AddVerb(tool.Top(), "diff",
                              {"Show how a document or a device differs from the device",
                               [&tool, arguments] { return Diff(*arguments, tool.Timeout()); },
                               ShowDiff,
                               {"networkgrpc export >state.json && networkgrpc diff state.json"}});
  diff.OptionalArgument("FILE", &arguments->file, "The document; - for standard input")
      .Offer(Candidates::kFiles);
  diff.OptionalArgument("OTHER", &arguments->other,
                        "Compare with this document, not with the device")
      .Offer(Candidates::kFiles);
  diff.Option("--with", "NAME", &arguments->with,
              "Compare with this device of 'networkgrpc devices'")
      .Offer(Candidates::kDevices);
  diff.Flag("--exit-code", &arguments->exit_code, "Exit with status 1 if there is a difference");
  AddImport(tool);
}

}  // namespace tool
