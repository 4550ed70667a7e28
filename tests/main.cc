// Runs every test case in a process of its own: the clients are one per process
// and read the environment once. ctest names one case per process already; this
// makes a run by hand without a filter behave the same. With a filter, choose one
// case.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

std::vector<std::string> AllTests() {
  std::vector<std::string> names;
  const auto& unit = *testing::UnitTest::GetInstance();
  for (int i = 0; i < unit.total_test_suite_count(); ++i) {
    const auto& suite = *unit.GetTestSuite(i);
    for (int k = 0; k < suite.total_test_count(); ++k)
      names.push_back(std::string(suite.name()) + "." + suite.GetTestInfo(k)->name());
  }
  return names;
}

int RunInChild(const char* self, const std::string& test) {
  const pid_t child = fork();
  if (child == 0) {
    const std::string filter = "--gtest_filter=" + test;
    execl(self, self, filter.c_str(), "--gtest_brief=1", static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(filter) != "*" || GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();

  int failed = 0;
  const std::vector<std::string> tests = AllTests();
  for (const std::string& test : tests) {
    if (RunInChild("/proc/self/exe", test) != 0) {
      std::printf("FAILED: %s\n", test.c_str());
      ++failed;
    }
  }
  std::printf("%zu passed, %d failed\n", tests.size() - static_cast<std::size_t>(failed), failed);
  return failed == 0 ? 0 : 1;
}
