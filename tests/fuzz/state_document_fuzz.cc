// State documents, as the tool and the simulator read them.
//
// Input: the text of a document.
#include "simulator/state.h"
#include "state_document/compare.h"
#include "tests/fuzz/fuzz.h"

using fuzz::Check;
using state_document::BadDocument;
using state_document::Document;

namespace {

void CheckDocument(const std::string& text) {
  const auto root = Document(text, "f").Root();
  const std::string written = state_document::ToText(root);
  Check(Document(written, "f").Root() == root, "what is written is read as it was");
  const auto settable = state_document::Settable(root);
  Check(state_document::Differences("", settable, settable).empty(), "it equals itself");
  Check(state_document::Merged(settable, settable) == settable, "merged with itself it stays");
}

void CheckState(const std::string& text) {
  const std::string written = simulator::WriteState(simulator::ReadState(text, "f", {}));
  Check(simulator::WriteState(simulator::ReadState(written, "f", {})) == written,
        "a state is read as it was written");
}

template <class Read>
void Try(Read read, const std::string& text) {
  try {
    read(text);
  } catch (const BadDocument& bad) {
    Check(std::string(bad.what()).compare(0, 2, "f:") == 0, "an error names file and line");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  Try(CheckDocument, text);
  Try(CheckState, text);
  return 0;
}
