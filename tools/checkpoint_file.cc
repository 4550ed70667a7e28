#include "tools/checkpoint_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "state_document/save_file.h"
#include "tools/daemon.h"
#include "tools/environment.h"
#include "tools/failure.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

// It must outlive a restart of the machine, and be the same in every session.
std::string StateFolder() {
  const std::string state = Variable("XDG_STATE_HOME");
  const std::string home = Variable("HOME");
  if (!state.empty()) return state + "/networkgrpc";
  if (geteuid() == 0 || home.empty()) return "/var/lib/networkgrpc";
  return home + "/.local/state/networkgrpc";
}

// FNV-1a: the same in every version of this program.
std::string Key(const std::string& text) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char character : text)
    hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
  std::string digits(16, '\0');
  std::snprintf(digits.data(), digits.size() + 1, "%016llx", static_cast<unsigned long long>(hash));
  return digits;
}

// JSON behind a line with its key: what this program did not write is not restored.
std::string FileText(const Json& json) {
  const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  return Key(text) + '\n' + text;
}

// Null if the text is damaged.
Json FromText(const std::string& text) {
  const std::size_t end = text.find('\n');
  if (end == std::string::npos || text.substr(0, end) != Key(text.substr(end + 1))) return nullptr;
  const Json json = Json::parse(text.substr(end + 1), nullptr, false);
  return json.is_object() ? json : nullptr;
}

[[noreturn]] void Fail(const std::string& what, const std::string& file, int error) {
  throw Failure(ExitStatus::kFailed, "cannot " + what + " the checkpoint " + file + ": " +
                                         std::generic_category().message(error));
}

// False if there is none.
bool RemoveFile(const std::string& file) {
  const bool is_removed = unlink(file.c_str()) == 0;
  if (!is_removed && errno != ENOENT) Fail("remove", file, errno);
  return is_removed;
}

// Locks of the open file, which child processes inherit.
bool SetLock(int descriptor, int command, struct flock& lock) {
  lock = {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return fcntl(descriptor, command, &lock) == 0;
}

int OpenAny(const std::string& file, const std::string& other) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  return descriptor >= 0 || errno != ENOENT ? descriptor
                                            : open(other.c_str(), O_RDONLY | O_CLOEXEC);
}

bool IsRemoved(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

// Not that of a file which whoever had the lock has removed meanwhile.
int OpenLocked(const std::string& file) {
  const int descriptor = open(file.c_str(), O_RDWR | O_CLOEXEC);
  struct flock lock {};
  if (descriptor < 0 || (SetLock(descriptor, F_OFD_SETLK, lock) && !IsRemoved(descriptor)))
    return descriptor;
  close(descriptor);
  return -1;
}

bool HasLock(const std::string& file) {
  const int descriptor = open(file.c_str(), O_RDWR | O_CLOEXEC);
  struct flock lock {};
  const bool is_locked =
      descriptor >= 0 && SetLock(descriptor, F_OFD_GETLK, lock) && lock.l_type != F_UNLCK;
  if (descriptor >= 0) close(descriptor);
  return is_locked;
}

// Each a number of nanoseconds after 1970 began, or what utimensat has a name for.
struct Times {
  long read;
  long written;
};

void SetTimes(const std::string& file, const Times& to) {
  const std::array<timespec, 2> times{timespec{0, to.read}, timespec{0, to.written}};
  utimensat(AT_FDCWD, file.c_str(), times.data(), 0);
}

bool IsFile(const std::string& file) { return access(file.c_str(), F_OK) == 0; }

// While it lives, no other process creates, renames or removes a checkpoint: what was looked at
// is what is then renamed or removed. A process that has ended holds up nobody.
class Turn {
 public:
  explicit Turn(const std::string& folder)
      : descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (flock(descriptor, LOCK_EX) != 0 && errno == EINTR) {
    }
  }
  ~Turn() {
    flock(descriptor, LOCK_UN);  // if it cannot be closed, the next Turn still comes
    if (descriptor >= 0) close(descriptor);
  }

  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  const int descriptor;
};

// With those above it, each of them on the disk before the next. False, with errno, if one
// cannot be made.
bool CreateFolder(const fs::path& folder) {
  if (IsFile(folder)) return true;
  const fs::path above = folder.parent_path();
  return CreateFolder(above) && (mkdir(folder.c_str(), 0777) == 0 || errno == EEXIST) &&
         state_document::FlushFolder(above);
}

}  // namespace

double SecondsSinceBoot() {
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

CheckpointFile CheckpointFile::OfThisDevice() {
  return CheckpointFile(StateFolder() + "/" +
                        Key(Endpoint(Daemon::kNetworkManager) + "\n" + Endpoint(Daemon::kDante)));
}

std::vector<CheckpointFile> CheckpointFile::All() {
  std::vector<CheckpointFile> all;
  std::error_code ignored;  // no folder: no checkpoint
  for (const auto& entry : fs::directory_iterator(StateFolder(), ignored)) {
    const fs::path& path = entry.path();
    if (path.extension() == ".open" || path.extension() == ".restoring")
      all.emplace_back((path.parent_path() / path.stem()).string());
  }
  return all;
}

bool CheckpointFile::IsOpen() const { return IsFile(Open()); }

bool CheckpointFile::IsRestoring() const { return IsFile(Restoring()); }

bool CheckpointFile::IsOpen(const Witness& witness) const {
  return !witness.SawRemoval() && IsOpen();
}

bool CheckpointFile::IsAttended() const { return HasLock(Open()) || HasLock(Restoring()); }

int CheckpointFile::Create(const Json& content) const {
  if (!CreateFolder(fs::absolute(Folder()))) Fail("create the folder of", stem, errno);
  chmod(Folder().c_str(), S_IRWXU);  // a wireless key can be in it
  const std::string file = stem + "." + std::to_string(getpid());
  try {
    state_document::SaveFile(file, FileText(content));
  } catch (const std::runtime_error& reason) {
    throw Failure(ExitStatus::kFailed, std::string("no checkpoint: ") + reason.what());
  }
  const Turn turn(Folder());
  const int descriptor = OpenLocked(file);
  const auto rename = [&] {
    if (!IsRestoring())
      return renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, Open().c_str(), RENAME_NOREPLACE) == 0;
    errno = EEXIST;
    return false;
  };
  const bool is_renamed = descriptor >= 0 && rename();
  if (!is_renamed || !state_document::FlushFolder(Folder())) {
    const int reason = errno;
    unlink(is_renamed ? Open().c_str() : file.c_str());
    if (descriptor >= 0) close(descriptor);
    Fail("create", Open(), reason);
  }
  return descriptor;
}

int CheckpointFile::Lock() const {
  const int descriptor = OpenLocked(Open());
  return descriptor >= 0 ? descriptor : OpenLocked(Restoring());
}

Json CheckpointFile::Read() const {
  for (const std::string& file : {Open(), Restoring()}) {
    std::ifstream stream(file);
    if (!stream) continue;
    Json content = FromText({std::istreambuf_iterator<char>(stream), {}});
    if (!content.is_null()) return content;
    throw Failure(ExitStatus::kFailed, "the checkpoint " + file + " is damaged; remove it");
  }
  throw Failure(ExitStatus::kNotFound, "no checkpoint is open for this device");
}

bool CheckpointFile::Confirm(const Witness& witness) const {
  const Turn turn(Folder());
  const bool is_first = !witness.SawRemoval() && RemoveFile(Open());
  Flush();
  return is_first;
}

bool CheckpointFile::BeginRestoring(const Witness& witness) const {
  const Turn turn(Folder());
  return !witness.SawRemoval() && rename(Open().c_str(), Restoring().c_str()) == 0;
}

// A file of the year 1970 says so to those that have it open: see Witness.
void CheckpointFile::RemoveRestored() const {
  SetTimes(Restoring(), {UTIME_OMIT, 0});
  RemoveUnwanted();
}

void CheckpointFile::RemoveUnwanted() const {
  const Turn turn(Folder());
  RemoveFile(Open());
  RemoveFile(Restoring());
  RemoveFile(ProgressFile());
  Flush();
}

std::string CheckpointFile::Folder() const { return fs::path(stem).parent_path().string(); }

// After a power cut, what was decided is not open again.
void CheckpointFile::Flush() const { state_document::FlushFolder(Folder()); }

void CheckpointFile::Touch() const { SetTimes(Restoring(), {UTIME_NOW, UTIME_OMIT}); }

// Without it a restoration only repeats what it has done.
void CheckpointFile::SaveProgress(bool must_reload, const std::string& problem) const {
  try {
    state_document::SaveFile(ProgressFile(),
                             FileText({{"must_reload", must_reload}, {"problem", problem}}));
  } catch (const std::runtime_error&) {
  }
}

Json CheckpointFile::Progress() const {
  std::ifstream stream(ProgressFile());
  const Json progress = FromText({std::istreambuf_iterator<char>(stream), {}});
  return progress.is_null() ? Json{{"must_reload", false}, {"problem", ""}} : progress;
}

Witness::Witness(const CheckpointFile& file) : descriptor(OpenAny(file.Open(), file.Restoring())) {
  if (descriptor < 0 && errno != ENOENT) Fail("open", file.Open(), errno);
}

Witness::~Witness() {
  if (descriptor >= 0) close(descriptor);
}

bool Witness::SawRemoval() const {
  struct stat status {};
  return descriptor < 0 || (fstat(descriptor, &status) == 0 && status.st_nlink == 0);
}

bool Witness::SawRestoration() const {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && status.st_mtime == 0;
}

}  // namespace tool
