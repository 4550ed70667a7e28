// Command lines of the tool: made of its commands and options, and of anything.
//
// Input: words. A byte below 200 stands for one of the words that the tool completes,
// any other for a word that follows with its length.
#include <iostream>
#include <set>
#include <sstream>

#include "tests/fuzz/fuzz.h"
#include "tools/commands.h"

namespace {

using fuzz::Check;
using Words = std::vector<std::string>;

// Takes what is printed while it lives.
class Printed {
 public:
  Printed() : out(std::cout.rdbuf(text.rdbuf())), error(std::cerr.rdbuf(text.rdbuf())) {}
  ~Printed() {
    std::cout.rdbuf(out);
    std::cerr.rdbuf(error);
  }
  Printed(const Printed&) = delete;
  Printed& operator=(const Printed&) = delete;

  std::stringstream text;

 private:
  std::streambuf* const out;
  std::streambuf* const error;
};

Words Completions(tool::Tool& tool, const Words& before) {
  Printed printed;
  const int error = dup(STDERR_FILENO);
  tool.Complete(before);  // which closes standard error
  dup2(error, STDERR_FILENO);
  close(error);
  Words words;
  for (std::string line; std::getline(printed.text, line);)
    words.push_back(line.substr(0, line.find('\t')));
  return words;
}

Words Vocabulary(tool::Tool& tool) {
  std::set<std::string> words{"", "-", "--", "=", "help", "1", "1-8,12", "all", "on", "10.0.0.1/8"};
  const auto add = [&](const Words& before) {
    const Words more = Completions(tool, before);
    words.insert(more.begin(), more.end());
    return more;
  };
  for (const std::string& noun : add({""})) {
    add({noun, "-"});
    if (Completions(tool, {noun, "--h"}).empty()) continue;
    for (const std::string& verb : add({noun, ""})) add({noun, verb, "-"});
  }
  return {words.begin(), words.end()};
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tool::Tool& tool = *[] {
    setenv("NETWORKGRPC_DEVICES", "", 1);
    setenv("network_manager_url", "127.0.0.1:1", 1);
    setenv("grpc_dapi_url", "127.0.0.1:1", 1);
    auto* const made = new tool::Tool;
    tool::AddCommands(*made);
    return made;
  }();
  static const Words vocabulary = Vocabulary(tool);

  fuzz::Input input(data, size);
  Words words;
  while (!input.AtEnd() && words.size() < 16) {
    constexpr std::uint8_t kOther = 200;
    const std::uint8_t byte = input.Byte();
    words.push_back(byte < kOther ? vocabulary[byte % vocabulary.size()]
                                  : std::string(input.Bytes(input.Byte())));
  }
  const Printed printed;
  const std::optional<int> status = tool.Parse(words);
  Check(!status || *status == 0 || *status == 2, "it can be run, or help, or a mistake");
  Check(status.has_value() != printed.text.str().empty(), "it says why it is not run");
  fuzz::CheckPrintable(printed.text.str());
  return 0;
}
