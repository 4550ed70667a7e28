#include "simulator/program/address_book.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "simulator/descriptor.h"
#include "simulator/json.h"
#include "state_document/save_file.h"

namespace simulator {
namespace {

constexpr const char* kBlank = " \t\r";

// TOML's basic strings have the escapes of JSON, except that of the slash, which is
// not written. DEL must be escaped, too.
std::string Quoted(const std::string& string) {
  std::string quoted;
  for (const char character : Json(string).dump())
    quoted += character == '\x7f' ? "\\u007F" : std::string(1, character);
  return quoted;
}

std::string Header(const std::string& name) {
  const bool is_bare =
      !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char character) {
        return character < 0x80 && (std::isalnum(character) != 0 || std::strchr("_-", character));
      });
  return "[devices." + (is_bare ? name : Quoted(name)) + ']';
}

std::string Urls(const BookEntry& entry) {
  return "network_manager = " + Quoted(entry.network_manager) + "\ndapi = " + Quoted(entry.dapi) +
         '\n';
}

bool StartsWith(const std::string& line, const std::string& start) {
  const std::size_t first = std::min(line.find_first_not_of(kBlank), line.size());
  return line.compare(first, start.size(), start) == 0;
}

bool IsUrl(const std::string& line) {
  for (const char* const key : {"network_manager", "dapi"})
    for (const char* const after : {" ", "\t", "="})
      if (StartsWith(line, std::string(key) + after)) return true;
  return false;
}

std::vector<std::string> ReadLines(const std::string& file) {
  struct stat found {};
  std::ifstream stream(file);
  if (!stream && errno == ENOENT) return {};
  if (!stream || stat(file.c_str(), &found) != 0)
    throw std::runtime_error("cannot read " + file + ": " + std::strerror(errno));
  if (!S_ISREG(found.st_mode))
    throw std::runtime_error("cannot write " + file + ": not a regular file");
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string WithEntry(const std::vector<std::string>& lines, const BookEntry& entry) {
  std::ostringstream text;
  bool is_in_entry = false;
  bool is_written = false;
  for (const std::string& line : lines) {
    if (StartsWith(line, "[")) is_in_entry = StartsWith(line, Header(entry.name));
    if (is_in_entry && IsUrl(line)) continue;
    text << line << '\n';
    if (!is_in_entry || is_written) continue;
    text << Urls(entry);
    is_written = true;
  }
  if (!is_written) text << (lines.empty() ? "" : "\n") << ToToml(entry);
  return text.str();
}

// Held while the object lives.
Descriptor LockFolderOf(const std::string& file) {
  const std::size_t slash = file.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash + 1);
  Descriptor lock(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!lock.IsOpen() || flock(lock.Get(), LOCK_EX) != 0)
    throw std::runtime_error("cannot write " + file + ": cannot use folder " + folder + ": " +
                             std::strerror(errno));
  return lock;
}

}  // namespace

std::string ToToml(const BookEntry& entry) { return Header(entry.name) + '\n' + Urls(entry); }

void WriteToBook(const std::string& file, const BookEntry& entry) {
  const Descriptor lock = LockFolderOf(file);
  state_document::SaveFile(file, WithEntry(ReadLines(file), entry));
}

}  // namespace simulator
