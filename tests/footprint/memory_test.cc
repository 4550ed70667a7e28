// The memory that the library uses at the first answer, beyond that of gRPC and the
// generated stub for the same answer.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "ostrevan/grpcdapi.pb.h"
#include "support/device.h"
#include "support/run_program.h"

namespace {

long Budget(const std::string& wanted) {
  std::ifstream lines(BUDGETS);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string name;
    long number = 0;
    if (words >> name >> number && name == wanted) return number;
  }
  ADD_FAILURE() << "no budget is called " << wanted;
  return 0;
}

// The private memory that a program reports, in KiB: the median of several runs.
struct Private {
  long dirty;
  long all;
};

long Median(std::vector<long>& values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

Private Measure(const std::vector<std::string>& command) {
  std::vector<long> dirty(9);
  std::vector<long> all(dirty.size());
  for (std::size_t i = 0; i < dirty.size(); ++i) {
    const support::Finished run = support::Run(command);
    std::istringstream told(run.out);
    EXPECT_TRUE(told >> dirty[i] >> all[i]) << command.front() << run.out << run.err;
    EXPECT_GT(dirty[i], 0);
  }
  return {Median(dirty), Median(all)};
}

class FirstAnswer : public testing::Test {
 protected:
  FirstAnswer() {
    ostrevan::grpcdapi::Name name;
    name.set_name("the module");
    device.dapi->Script(support::DapiPath("GetName"), support::Reply(name));
  }

  void ExpectWithinBudget(const std::vector<std::string>& command) {
    const long budget = Budget("private_kib");
    const Private raw = Measure({FIRST_ANSWER_RAW});
    const Private own = Measure(command);
    RecordProperty("dirty_kib", static_cast<int>(own.dirty - raw.dirty));
    RecordProperty("private_kib", static_cast<int>(own.all - raw.all));
    EXPECT_LE(own.dirty - raw.dirty, budget);
    EXPECT_LE(own.all - raw.all, budget);
  }

  support::Device device;
};

TEST_F(FirstAnswer, LibraryIsLinked_TakesLittleMoreThanTheStub) {
  ExpectWithinBudget({FIRST_ANSWER_LINKED});
}

TEST_F(FirstAnswer, LibraryIsLoaded_TakesLittleMoreThanTheStub) {
  ExpectWithinBudget({FIRST_ANSWER_LOADED, LIBRARY});
}

}  // namespace
