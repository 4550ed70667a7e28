// Files of checkpoints. Only what the tool has written may be restored.
//
// Input: the content of a file.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/fuzz/fuzz.h"
#include "tools/checkpoint.h"
#include "tools/failure.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string state = [] {
    std::string folder = (std::filesystem::temp_directory_path() / "checkpoint.XXXXXX").string();
    fuzz::Check(mkdtemp(folder.data()) != nullptr, "there is a folder");
    setenv("XDG_STATE_HOME", folder.c_str(), 1);
    std::filesystem::create_directory(folder + "/networkgrpc");
    std::atexit([] { std::filesystem::remove_all(std::getenv("XDG_STATE_HOME")); });
    return folder;
  }();
  const tool::CheckpointFile file = tool::CheckpointFile::OfThisDevice();
  for (const char* kind : {".open", ".progress"})
    std::ofstream(file.Stem() + kind, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  try {
    fuzz::Check(file.Read().is_object(), "what is read was written");
  } catch (const tool::Failure&) {
  }
  fuzz::Check(file.Progress().is_object(), "there is always a progress");
  for (const std::string& line : tool::AbandonedCheckpoints())
    fuzz::Check(line.find('\n') == std::string::npos, "one line each");
  return 0;
}
