#include "state_document/document.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <utility>

#include "state_document/parse.h"
#include "state_document/table.h"

namespace state_document {
namespace {

[[noreturn]] void ThrowUnreadable(const std::string& name) {
  const std::string reason = std::strerror(errno);
  throw std::runtime_error("cannot read " + name + ": " + reason);
}

// Opening a device may act on it, and it may have no end.
void CheckReadable(const std::string& file) {
  struct stat found {};
  if (stat(file.c_str(), &found) != 0) ThrowUnreadable(file);
  if (S_ISREG(found.st_mode) || S_ISFIFO(found.st_mode)) return;
  errno = EISDIR;
  if (S_ISDIR(found.st_mode)) ThrowUnreadable(file);
  throw std::runtime_error("cannot read " + file + ": not a regular file or a pipe");
}

}  // namespace

Document::Document(const std::string& text, std::string given_name) : name(std::move(given_name)) {
  if (text.size() > kMostBytes)
    throw BadDocument(Message(name, 1, "the document: must not be larger than 16 MiB"));
  Parse(text, name, root, lines);
  CheckRouting();
}

void Document::Reject(const std::string& list, std::size_t entry, const std::string& reason) const {
  throw BadDocument(Message(name, lines.at(list).at(entry),
                            EntryPath(list, std::to_string(entry)) + ": " + reason));
}

// What the table cannot say: which members belong together. The library would
// remove a subscription of which a part is missing.
void Document::CheckRouting() const {
  const Json none = Json::array();
  const Json dante = root.value("dante", Json::object());
  std::set<Json> channels;
  for (const Json& channel : dante.value("rx_channels", none)) channels.insert(channel["id"]);
  std::size_t entry = 0;
  for (const Json& route : dante.value("routing", none)) {
    const Json raw = route.value("raw", Json());
    if (!raw.is_null() && raw["ip"] == "")
      Reject("dante.routing", entry, "raw.ip must not be empty");
    if (raw.is_null() && route.value("device", "").empty() != route.value("channel", "").empty())
      Reject("dante.routing", entry, "needs both device and channel, or neither");
    if (dante.contains("rx_channels") && channels.count(route["rx_channel"]) == 0)
      Reject("dante.routing", entry, "rx_channel must be one of rx_channels");
    ++entry;
  }
}

std::string ReadText(std::istream& stream, const std::string& name) {
  std::string text;
  std::array<char, 65536> block{};
  while (text.size() <= kMostBytes && stream) {
    stream.read(block.data(), block.size());
    text.append(block.data(), static_cast<std::size_t>(stream.gcount()));
  }
  if (stream.bad()) ThrowUnreadable(name);
  return text;
}

std::string ReadTextFile(const std::string& file) {
  CheckReadable(file);
  std::ifstream stream(file, std::ios::binary);
  if (!stream) ThrowUnreadable(file);
  return ReadText(stream, file);
}

Document Read(std::istream& stream, const std::string& name) {
  return {ReadText(stream, name), name};
}

Document ReadFile(const std::string& file) { return {ReadTextFile(file), file}; }

std::string ToText(const Json& document) {
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace state_document
