// Replacing a file as a whole: what is kept, what is rejected, and that nothing is
// lost or left behind when a step fails.
#include "state_document/save_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using state_document::CheckSavable;
using state_document::SaveFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

// What was flushed: "file" or "folder".
std::vector<std::string>& Flushed() {
  static std::vector<std::string> flushed;
  return flushed;
}

const char* failing = "";  // the function that fails
int reason = EIO;

int Result(const char* function, long result) {
  if (std::string_view(function) != failing) return static_cast<int>(result);
  errno = reason;
  return -1;
}

}  // namespace

// In place of those of the C library.
extern "C" int fsync(int fd) {
  struct stat found {};
  fstat(fd, &found);
  const bool is_folder = S_ISDIR(found.st_mode);
  Flushed().emplace_back(is_folder ? "folder" : "file");
  return Result(is_folder ? "fsync of a folder" : "fsync", syscall(SYS_fsync, fd));
}
extern "C" int close(int fd) { return Result("close", syscall(SYS_close, fd)); }
extern "C" int fchmod(int fd, mode_t mode) noexcept {
  return Result("fchmod", syscall(SYS_fchmod, fd, mode));
}
extern "C" int fchown(int fd, uid_t owner, gid_t group) noexcept {
  return Result("fchown", syscall(SYS_fchown, fd, owner, group));
}

namespace {

class SavedFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "save_file_test.XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = std::filesystem::canonical(pattern);
    Flushed().clear();
    descriptors = Descriptors();
  }
  void TearDown() override {
    EXPECT_EQ(Descriptors(), descriptors);
    std::filesystem::remove_all(folder);
  }

  std::string Path(const std::string& name) const { return folder + '/' + name; }

  void Write(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name)) << content;
  }
  std::string Content(const std::string& name) const {
    std::ifstream stream(Path(name));
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  mode_t ModeOf(const std::string& name) const {
    struct stat found {};
    stat(Path(name).c_str(), &found);
    return found.st_mode & 07777U;
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      names.push_back(entry.path().filename());
    return names;
  }

  static long Descriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  }

  // Why the file cannot be saved, by either function; "" if it can.
  template <class Save>
  static std::string ErrorOf(Save save) {
    try {
      save();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }
  static std::string ErrorOfSaving(const std::string& file) {
    const std::string error = ErrorOf([&] { CheckSavable(file); });
    EXPECT_EQ(ErrorOf([&] { SaveFile(file, "new"); }), error);
    return error;
  }

  std::string folder;
  long descriptors = 0;
};

TEST_F(SavedFile, IsNew_HasTheModeOfEveryNewFile) {
  const mode_t mask = umask(0027);
  SaveFile(Path("state"), "new");
  umask(mask);

  EXPECT_EQ(Content("state"), "new");
  EXPECT_EQ(ModeOf("state"), 0640U);
  EXPECT_THAT(Names(), ElementsAre("state"));
}

TEST_F(SavedFile, Exists_IsReplacedByANewFileOfItsMode) {
  Write("state", "a longer old content");
  chmod(Path("state").c_str(), 0604);
  const std::ifstream reader(Path("state"));

  SaveFile(Path("state"), "new");

  EXPECT_EQ(Content("state"), "new");
  EXPECT_EQ(ModeOf("state"), 0604U);
  std::stringstream old;
  old << reader.rdbuf();
  EXPECT_EQ(old.str(), "a longer old content");
  EXPECT_THAT(Names(), ElementsAre("state"));
}

TEST_F(SavedFile, BelongsToAnotherUser_KeepsItsOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  Write("state", "old");
  ASSERT_EQ(chown(Path("state").c_str(), 1234, 2345), 0);

  SaveFile(Path("state"), "new");

  struct stat found {};
  stat(Path("state").c_str(), &found);
  EXPECT_EQ(found.st_uid, 1234U);
  EXPECT_EQ(found.st_gid, 2345U);
}

TEST_F(SavedFile, IsASymbolicLink_ItsTargetIsReplacedAndTheLinkStays) {
  std::filesystem::create_directory(Path("there"));
  Write("there/state", "old");
  std::filesystem::create_symlink("there/second", Path("first"));
  std::filesystem::create_symlink("state", Path("there/second"));

  EXPECT_EQ(CheckSavable(Path("first")), Path("there/state"));
  SaveFile(Path("first"), "new");

  EXPECT_EQ(Content("there/state"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(Path("first")));
  EXPECT_TRUE(std::filesystem::is_symlink(Path("there/second")));
}

TEST_F(SavedFile, LinkPointsToNoFile_TheFileIsMade) {
  std::filesystem::create_symlink(Path("absent"), Path("link"));

  SaveFile(Path("link"), "new");

  EXPECT_EQ(Content("absent"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
}

TEST_F(SavedFile, ChainOfLinks_IsFollowedAsFarAsTheKernelDoes) {
  Write("0", "old");
  for (int link = 1; link <= 41; ++link)
    std::filesystem::create_symlink(std::to_string(link - 1), Path(std::to_string(link)));

  SaveFile(Path("40"), "new");

  EXPECT_EQ(Content("0"), "new");
  EXPECT_EQ(ErrorOfSaving(Path("41")),
            "cannot write " + Path("41") + ": Too many levels of symbolic links");
}

TEST_F(SavedFile, LinksWithoutEnd_AreRejected) {
  std::filesystem::create_symlink("link", Path("link"));
  EXPECT_EQ(ErrorOfSaving(Path("link")),
            "cannot write " + Path("link") + ": Too many levels of symbolic links");
}

TEST_F(SavedFile, IsNoRegularFile_IsRejectedAndStays) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/full", Path("full"));

  for (const char* name : {"pipe", "full"})
    EXPECT_EQ(ErrorOfSaving(Path(name)), "cannot write " + Path(name) + ": not a regular file");
  EXPECT_EQ(ErrorOfSaving(folder), "cannot write " + folder + ": Is a directory");
  EXPECT_EQ(ErrorOfSaving(folder + '/'), "cannot write " + folder + "/: Is a directory");

  EXPECT_TRUE(std::filesystem::is_fifo(Path("pipe")));
  EXPECT_TRUE(std::filesystem::is_symlink(Path("full")));
  EXPECT_THAT(Names(), UnorderedElementsAre("pipe", "full"));
}

TEST_F(SavedFile, FolderIsAbsent_IsRejectedWithItsName) {
  EXPECT_EQ(ErrorOfSaving(Path("none/state")), "cannot write " + Path("none/state") +
                                                   ": cannot use folder " + Path("none/") +
                                                   ": No such file or directory");
  EXPECT_EQ(ErrorOfSaving(""), "cannot write : No such file or directory");
}

// Access rights do not bind root, who gives them up for the test.
TEST_F(SavedFile, FileOrFolderIsProtected_IsRejected) {
  Write("state", "old");
  if (geteuid() == 0) {
    ASSERT_EQ(chown(folder.c_str(), 1234, 1234), 0);
    ASSERT_EQ(chown(Path("state").c_str(), 1234, 1234), 0);
    ASSERT_EQ(seteuid(1234), 0);
  }
  chmod(Path("state").c_str(), 0400);
  const std::string file = ErrorOfSaving(Path("state"));
  chmod(Path("state").c_str(), 0600);
  chmod(folder.c_str(), 0500);
  const std::string in_folder = ErrorOfSaving(Path("state"));
  chmod(folder.c_str(), 0700);
  ASSERT_EQ(seteuid(getuid()), 0);

  EXPECT_EQ(file, "cannot write " + Path("state") + ": Permission denied");
  EXPECT_EQ(in_folder, "cannot write " + Path("state") + ": cannot create a temporary file in " +
                           folder + ": Permission denied");
  EXPECT_EQ(Content("state"), "old");
}

TEST_F(SavedFile, IsReplaced_FileIsFlushedBeforeAndFolderAfter) {
  SaveFile(Path("state"), "new");
  EXPECT_THAT(Flushed(), ElementsAre("file", "folder"));
}

TEST_F(SavedFile, StepFails_KeepsTheOldContentAndLeavesNothing) {
  const std::pair<const char*, std::string> steps[] = {{"fchown", "set the owner of"},
                                                       {"fchmod", "set the mode of"},
                                                       {"fsync", "flush"},
                                                       {"close", "close"}};
  for (const auto& [function, step] : steps) {
    SCOPED_TRACE(function);
    Write("state", "old");

    failing = function;
    const std::string error = ErrorOf([&] { SaveFile(Path("state"), "new"); });
    failing = "";

    EXPECT_THAT(error, StartsWith("cannot write " + Path("state") + ": cannot " + step +
                                  " temporary file " + Path(".networkgrpc.")));
    EXPECT_THAT(error, HasSubstr(": Input/output error"));
    EXPECT_EQ(Content("state"), "old");
    EXPECT_THAT(Names(), ElementsAre("state"));
  }
}

TEST_F(SavedFile, FolderCannotBeFlushed_IsReportedUnlessItNeverCan) {
  const std::pair<int, std::string> reasons[] = {
      {EIO, "cannot write " + Path("state") + ": cannot flush folder " + folder +
                ": Input/output error"},
      {EINVAL, ""}};
  for (const auto& [error, message] : reasons) {
    SCOPED_TRACE(error);
    failing = "fsync of a folder";
    reason = error;
    EXPECT_EQ(ErrorOf([&] { SaveFile(Path("state"), "new"); }), message);
    failing = "";
    reason = EIO;
    EXPECT_EQ(Content("state"), "new");
  }
}

TEST_F(SavedFile, NoRoomForTheContent_KeepsTheOldContentAndLeavesNothing) {
  Write("state", "old");
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit limit{10, before.rlim_max};
  std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &limit);

  const std::string error = ErrorOf([&] { SaveFile(Path("state"), std::string(100, 'x')); });

  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, SIG_DFL);
  EXPECT_THAT(error, StartsWith("cannot write " + Path("state") + ": cannot write temporary file " +
                                Path(".networkgrpc.")));
  EXPECT_THAT(error, HasSubstr(": File too large"));
  EXPECT_EQ(Content("state"), "old");
  EXPECT_THAT(Names(), ElementsAre("state"));
}

TEST_F(SavedFile, IsChecked_NothingIsWritten) {
  EXPECT_EQ(CheckSavable(Path("state")), Path("state"));
  EXPECT_EQ(CheckSavable(folder + "/./state"), Path("state"));
  EXPECT_THAT(Names(), IsEmpty());
}

}  // namespace
