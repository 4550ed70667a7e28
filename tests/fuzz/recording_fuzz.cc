// Recordings of the simulator: what is read, and what is written of any call.
//
// Input: the text of a recording; or 'w', then method, request and reply, each with its
// length.
#include <stdexcept>

#include "simulator/recording.h"
#include "simulator/replay.h"
#include "tests/fuzz/fuzz.h"

namespace {

using fuzz::Check;

void CheckWriting(fuzz::Input input) {
  simulator::Query query;
  const std::string method(input.Part());
  query.path = "/ostrevan.grpcdapi.DAPI/" + method;
  query.name = "DAPI." + method;
  query.request = input.Part();
  simulator::Outcome outcome;
  outcome.reply = input.Part();
  for (const bool redacts : {false, true}) {
    const fuzz::File file("");
    try {
      simulator::RecordingFile(file.Path(), redacts).Write(query, "", outcome);
      const auto calls = simulator::ReadRecording(file.Path());
      Check(calls.size() == 1, "the call is recorded");
      Check(redacts || (calls[0].path == query.path && calls[0].request == query.request &&
                        calls[0].outcome.reply == outcome.reply),
            "the bytes are kept");
    } catch (const std::runtime_error& error) {
      Check(std::string(error.what()).find("unknown method") != std::string::npos,
            "only an unknown method is not read");
    }
  }
}

void CheckReading(std::string_view text) {
  const fuzz::File file(text);
  try {
    const simulator::Replay replay(simulator::ReadRecording(file.Path()));
  } catch (const std::runtime_error& error) {
    Check(std::string(error.what()).find(file.Path()) != std::string::npos,
          "an error names the file");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0 && data[0] == 'w')
    CheckWriting({data + 1, size - 1});
  else
    CheckReading({reinterpret_cast<const char*>(data), size});
  return 0;
}
