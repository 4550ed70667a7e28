// Requests on the control socket of the simulator, and scenarios.
//
// Input: a request or the text of a scenario.
#include <stdexcept>

#include "simulator/program/control_commands.h"
#include "simulator/program/scenario.h"
#include "tests/fuzz/fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static std::vector<simulator::Simulator>& devices = *[] {
    auto* const all = new std::vector<simulator::Simulator>;
    all->push_back(simulator::Builder().Channels(1, 1).Start());
    return all;
  }();
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::optional<std::string> answer = simulator::AnswerControlRequest(devices, text);
  fuzz::Check(!answer || answer->find('\n') == std::string::npos, "an answer is one line");
  fuzz::Check(!answer || simulator::Json::parse(*answer).contains("ok"), "it says if it is done");

  const fuzz::File file(text);
  try {
    const simulator::Scenario scenario(file.Path());
  } catch (const std::runtime_error& error) {
    const std::string message = error.what();
    fuzz::Check(message.compare(0, file.Path().size() + 1, file.Path() + ":") == 0,
                "an error names the file");
  }
  return 0;
}
