// The fixture of tests of the simulator as a program.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "support/run_program.h"
#include "tests/simulator/simulator_process.h"

namespace support {

/// Runs it to its end.
inline Finished RunSimulator(std::vector<std::string> options) {
  options.insert(options.begin(), SimulatorProgram());
  return Run(options);
}

/// Of an endpoint.
inline std::string Port(const std::string& url) { return url.substr(url.rfind(':') + 1); }

/// A folder that only this user can enter, for sockets and states.
class ProgramInFolder : public testing::Test {
 protected:
  ProgramInFolder() {
    std::string pattern = testing::TempDir() + "program_test.XXXXXX";
    if (mkdtemp(pattern.data()) != nullptr) folder = pattern;
  }
  ~ProgramInFolder() override {
    for (const char* file : {"first.json", "second.json"}) std::remove(Path(file).c_str());
    std::remove(Path("control").c_str());  // of a simulator that was killed
    rmdir(folder.c_str());
  }
  ProgramInFolder(const ProgramInFolder&) = delete;
  ProgramInFolder& operator=(const ProgramInFolder&) = delete;

  std::string Path(const std::string& name) const { return folder + '/' + name; }

  std::string Content(const std::string& name) const {
    std::ifstream stream(Path(name));
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  /// What ctl prints.
  std::string Ctl(std::vector<std::string> words) {
    words.insert(words.begin(), {"ctl", "--control", Path("control")});
    const Finished finished = RunSimulator(std::move(words));
    EXPECT_EQ(finished.status, 0) << finished.err;
    return finished.out;
  }

  std::string folder;
};

}  // namespace support
