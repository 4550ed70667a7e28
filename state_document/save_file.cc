#include "state_document/save_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <stdexcept>
#include <utility>

namespace state_document {
namespace {

constexpr int kMostLinks = 40;  // as the kernel follows
constexpr int kMostNames = 100;
constexpr uid_t kUnchanged = static_cast<uid_t>(-1);

// The file as the user named it, for messages.
class Failure {
 public:
  explicit Failure(const std::string& named) : file(named) {}

  [[noreturn]] void Throw(const std::string& reason) const {
    throw std::runtime_error("cannot write " + file + ": " + reason);
  }
  // With the reason that errno has.
  [[noreturn]] void ThrowStep(const std::string& step) const {
    Throw(step + ": " + std::strerror(errno));
  }

 private:
  const std::string& file;
};

// The regular file that is replaced.
struct Target {
  std::string folder;  // absolute
  std::string name;
  bool exists = false;
  struct stat old {};

  std::string Path() const { return (folder == "/" ? "" : folder) + '/' + name; }
};

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// Where the last of the symbolic links points. Its target may be missing.
std::string Followed(std::string path, const Failure& failure) {
  std::array<char, PATH_MAX> link{};
  for (int links = 0; links <= kMostLinks; ++links) {
    const ssize_t size = readlink(path.c_str(), link.data(), link.size());
    if (size < 0) return path;
    std::string next(link.data(), static_cast<std::size_t>(size));
    if (next[0] != '/') next.insert(0, FolderOf(path) + '/');
    path = std::move(next);
  }
  failure.Throw(std::strerror(ELOOP));
}

Target Find(const std::string& file, const Failure& failure) {
  const std::string path = Followed(file, failure);
  const std::string folder = FolderOf(path);
  Target target;
  target.exists = stat(path.c_str(), &target.old) == 0;
  if (!target.exists && errno != ENOENT) failure.Throw(std::strerror(errno));
  if (target.exists && S_ISDIR(target.old.st_mode)) failure.Throw(std::strerror(EISDIR));
  if (target.exists && !S_ISREG(target.old.st_mode)) failure.Throw("not a regular file");
  if (target.exists && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
    failure.Throw(std::strerror(errno));
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(folder.c_str(), nullptr),
                                                         std::free);
  if (real == nullptr) failure.ThrowStep("cannot use folder " + folder);
  target.folder = real.get();
  target.name = path.substr(path.rfind('/') + 1);
  if (target.name.empty()) failure.Throw(std::strerror(ENOENT));
  return target;
}

// The new file. Removed with the object unless it has taken its place.
class NewFile {
 public:
  NewFile(const Target& replaced, const Failure& reported) : target(replaced), failure(reported) {
    // Private until it has the old one's mode; without one, as every new file.
    const mode_t mode = target.exists ? 0600 : 0666;
    std::random_device random;
    for (int names = 0; file < 0 && names < kMostNames; ++names) {
      path =
          (target.folder == "/" ? "" : target.folder) + "/.networkgrpc." + std::to_string(random());
      file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
      if (file < 0 && errno != EEXIST) break;
    }
    if (file < 0) failure.ThrowStep("cannot create a temporary file in " + target.folder);
  }
  ~NewFile() {
    if (file >= 0) close(file);
    if (!path.empty()) unlink(path.c_str());
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void Write(const std::string& content) {
    for (std::size_t at = 0; at < content.size();) {
      const ssize_t size = write(file, content.data() + at, content.size() - at);
      if (size < 0 && errno == EINTR) continue;
      if (size < 0) failure.ThrowStep("cannot write temporary file " + path);
      at += static_cast<std::size_t>(size);
    }
  }

  void TakePlace(std::optional<mode_t> mode) {
    if (target.exists) KeepOwner();
    if (!mode.has_value() && target.exists) mode = target.old.st_mode & 0777U;
    if (mode.has_value() && fchmod(file, *mode) != 0)
      failure.ThrowStep("cannot set the mode of temporary file " + path);
    if (fsync(file) != 0) failure.ThrowStep("cannot flush temporary file " + path);
    if (close(std::exchange(file, -1)) != 0)
      failure.ThrowStep("cannot close temporary file " + path);
    if (std::rename(path.c_str(), target.Path().c_str()) != 0)
      failure.ThrowStep("cannot rename temporary file " + path);
    path.clear();
  }

 private:
  void KeepOwner() {
    // Only root can give a file away, and others only to groups of theirs.
    const struct stat& old = target.old;
    const bool is_kept = fchown(file, old.st_uid, old.st_gid) == 0 ||
                         fchown(file, kUnchanged, old.st_gid) == 0 || errno == EPERM;
    if (!is_kept) failure.ThrowStep("cannot set the owner of temporary file " + path);
  }

  const Target& target;
  const Failure& failure;
  std::string path;
  int file = -1;
};

}  // namespace

bool FlushFolder(const std::string& path) {
  const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return errno == EACCES;
  const bool is_flushed = fsync(folder) == 0 || errno == EINVAL;
  const int reason = errno;
  close(folder);
  errno = reason;
  return is_flushed;
}

void SaveFile(const std::string& file, const std::string& content, std::optional<mode_t> mode) {
  const Failure failure(file);
  const Target target = Find(file, failure);
  NewFile fresh(target, failure);
  fresh.Write(content);
  fresh.TakePlace(mode);
  if (!FlushFolder(target.folder)) failure.ThrowStep("cannot flush folder " + target.folder);
}

std::string CheckSavable(const std::string& file) {
  const Failure failure(file);
  const Target target = Find(file, failure);
  const NewFile fresh(target, failure);
  return target.Path();
}

}  // namespace state_document
