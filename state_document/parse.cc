#include "state_document/parse.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <set>
#include <utility>

#include "state_document/bad_document.h"
#include "state_document/table.h"
#include "terminal/joined.h"

namespace state_document {
namespace {

// Where the parser is. It reads one byte ahead to see where a number ends.
struct Position {
  std::size_t line = 1;
  bool after_newline = false;
};

// Hands the bytes of the text to the parser and counts its lines.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* start, Position* counted) : next(start), position(counted) {}

  reference operator*() const { return *next; }
  CountingIterator& operator++() {
    position->after_newline = *next == '\n';
    if (position->after_newline) ++position->line;
    ++next;
    return *this;
  }
  bool operator==(const CountingIterator& other) const { return next == other.next; }
  bool operator!=(const CountingIterator& other) const { return next != other.next; }

 private:
  const char* next;
  Position* position;
};

std::string Range(const Type& type) {
  return "an integer from " + std::to_string(type.least) + " to " + std::to_string(type.most);
}

std::string Requirement(const Type& type) {
  switch (type.kind) {
    case Kind::kObject:
      return "an object";
    case Kind::kList:
      return "a list";
    case Kind::kString:
      return "a string";
    case Kind::kBoolean:
      return "true or false";
    case Kind::kInteger:
      return type.least == 1 && type.most == 1 ? "1" : Range(type);
    case Kind::kName:
      return "one of " + terminal::Joined(*type.names);
    case Kind::kNameOrNumber:
      break;
  }
  return "one of " + terminal::Joined(*type.names) + ", or " + Range(type);
}

bool IsInRange(const Type& type, const Json& value) {
  if (!value.is_number_unsigned())
    return value.is_number_integer() && value.get<std::int64_t>() >= type.least;
  const auto number = value.get<std::uint64_t>();
  return number <= type.most &&
         (type.least <= 0 || number >= static_cast<std::uint64_t>(type.least));
}

bool IsName(const Type& type, const Json& value) {
  return std::any_of(type.names->begin(), type.names->end(),
                     [&](const char* name) { return value == name; });
}

bool Fits(const Type& type, const Json& value) {
  if (value.is_null()) return type.or_null;
  switch (type.kind) {
    case Kind::kObject:
      return value.is_object();
    case Kind::kList:
      return value.is_array();
    case Kind::kString:
      return value.is_string();
    case Kind::kBoolean:
      return value.is_boolean();
    case Kind::kInteger:
      return IsInRange(type, value);
    case Kind::kName:
      return IsName(type, value);
    case Kind::kNameOrNumber:
      break;
  }
  return IsName(type, value) || IsInRange(type, value);
}

// Builds the document. The parser dictates the names and signatures of the
// functions; what they return, whether it is to continue, is always true: the
// first fault is thrown.
class Builder {
 public:
  using number_integer_t = Json::number_integer_t;
  using number_unsigned_t = Json::number_unsigned_t;
  using number_float_t = Json::number_float_t;
  using string_t = Json::string_t;
  using binary_t = Json::binary_t;

  Builder(std::string name, const Position& reached, Json& result, EntryLines& noted)
      : file(std::move(name)), position(reached), root(result), lines(noted) {}

  bool null() { return Add(nullptr, position.line); }
  bool boolean(bool value) { return Add(value, position.line); }
  bool number_integer(number_integer_t value) { return Add(value, LineBefore()); }
  bool number_unsigned(number_unsigned_t value) { return Add(value, LineBefore()); }
  bool number_float(number_float_t value, const string_t&) { return Add(value, LineBefore()); }
  bool string(const string_t& value) { return Add(value, position.line); }
  bool binary(const binary_t&) { return false; }

  bool start_object(std::size_t) { return Open(Json::object()); }
  bool start_array(std::size_t) { return Open(Json::array()); }
  bool end_object() {
    const Container& closed = open.back();
    for (const Node& member : closed.node->children)
      if ((member.use & kRequired) != 0 && !closed.value->contains(member.name)) {
        next = member.name;
        Reject(closed.line, "missing");
      }
    return end_array();
  }
  bool end_array() {
    next = open.back().node->name;
    open.pop_back();
    return true;
  }

  bool key(const string_t& value) {
    next = value;
    if (open.back().node->Find(value) == nullptr) Reject(position.line, "unknown member");
    if (open.back().value->contains(value)) Reject(position.line, "duplicate key");
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const Json::exception& error) {
    constexpr int kNumberOverflow = 406;
    if (error.id == kNumberOverflow) return number_float(0, "");
    // From version 3.11.3 on, the parser says of an empty document that it is "an empty input".
    const bool ended = std::strstr(error.what(), "unexpected end of input") != nullptr ||
                       std::strstr(error.what(), "an empty input") != nullptr;
    Reject(LineBefore(), ended ? "ends too early" : "syntax error");
  }

 private:
  struct Container {
    const Node* node;
    Json* value;
    std::size_t line;
    std::set<std::string> taken;  // of a list: what must be unique in it
  };

  // The parser may have read the line feed after what it reports.
  std::size_t LineBefore() const { return position.line - (position.after_newline ? 1 : 0); }

  const Node& NodeOfNext() const {
    if (open.empty()) return Root();
    const Node& parent = *open.back().node;
    return parent.type.kind == Kind::kList ? parent.children.front() : *parent.Find(next);
  }

  bool Add(Json value, std::size_t line) {
    Insert(std::move(value), line);
    return true;
  }

  bool Open(Json value) {
    const Node& node = NodeOfNext();
    Json& inserted = Insert(std::move(value), position.line);
    open.push_back({&node, &inserted, position.line, {}});
    return true;
  }

  Json& Insert(Json value, std::size_t line) {
    const Node& node = NodeOfNext();
    if (!Fits(node.type, value))
      Reject(line, "must be " + Requirement(node.type) + (node.type.or_null ? " or null" : ""));
    if (value.is_number() && node.type.names != nullptr)
      value = NameOf(*node.type.names, value.get<std::int64_t>());
    if (open.empty()) return root = std::move(value);
    Json& parent = *open.back().value;
    if (parent.is_array()) {
      if (value.is_object()) lines[Path()].push_back(line);
      parent.push_back(std::move(value));
      return parent.back();
    }
    if ((node.use & kUnique) != 0 &&
        !open[open.size() - 2].taken.insert(node.name + '=' + value.dump()).second)
      Reject(line, "duplicate key");
    return parent[next] = std::move(value);
  }

  // Of the innermost container.
  std::string Path() const {
    std::string path;
    for (std::size_t i = 1; i < open.size(); ++i) {
      const Json& parent = *open[i - 1].value;
      path = parent.is_array() ? EntryPath(path, std::to_string(parent.size() - 1))
                               : MemberPath(path, open[i].node->name);
    }
    return path;
  }

  [[noreturn]] void Reject(std::size_t line, const std::string& reason) const {
    std::string path;
    if (!open.empty()) {
      const Json& parent = *open.back().value;
      path = parent.is_array() ? EntryPath(Path(), std::to_string(parent.size()))
                               : MemberPath(Path(), next);
    }
    throw BadDocument(Message(file, line, (path.empty() ? "the document" : path) + ": " + reason));
  }

  std::string file;
  const Position& position;
  Json& root;
  EntryLines& lines;
  std::vector<Container> open;  // outermost first
  std::string next;             // the latest member of the innermost object
};

}  // namespace

void Parse(const std::string& text, const std::string& file, Json& root, EntryLines& lines) {
  Position position;
  Builder builder(file, position, root, lines);
  Json::sax_parse(CountingIterator(text.data(), &position),
                  CountingIterator(text.data() + text.size(), &position), &builder,
                  Json::input_format_t::json, true, true);
}

Json ParseJson(const std::string& text) {
  constexpr int kMostLevels = 100;
  const auto check = [](int level, Json::parse_event_t, Json&) {
    if (level > kMostLevels) throw std::runtime_error("nested too deeply");
    return true;
  };
  Json json = Json::parse(text, check, false, true);
  if (json.is_discarded()) throw std::runtime_error("not valid JSON");
  return json;
}

std::string Message(const std::string& file, std::size_t line, const std::string& reason) {
  return file + ':' + std::to_string(line) + ": " + reason;
}

}  // namespace state_document
