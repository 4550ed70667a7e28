#include "simulator/document.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace simulator {
namespace {

std::string Where(const std::string& name, std::size_t line) {
  return name + ':' + std::to_string(line) + ": ";
}

// Where the parser is. It reads one byte ahead to see where a number ends.
struct Position {
  std::size_t line = 1;
  bool after_newline = false;
};

// Gives the bytes of the text to the parser and counts its lines.
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

// Builds the values and notes their lines. The parser dictates the names and
// signatures of the functions.
class Builder {
 public:
  using number_integer_t = Json::number_integer_t;
  using number_unsigned_t = Json::number_unsigned_t;
  using number_float_t = Json::number_float_t;
  using string_t = Json::string_t;
  using binary_t = Json::binary_t;

  Builder(std::string name, const Position& reached, Json& result,
          std::map<std::string, std::size_t>& noted)
      : document(std::move(name)), position(reached), root(result), lines(noted) {}

  bool null() { return Add(nullptr); }
  bool boolean(bool value) { return Add(value); }
  bool number_integer(number_integer_t value) { return Add(value, NumberLine()); }
  bool number_unsigned(number_unsigned_t value) { return Add(value, NumberLine()); }
  bool number_float(number_float_t value, const string_t&) { return Add(value, NumberLine()); }
  bool string(const string_t& value) { return Add(value); }
  bool binary(const binary_t&) { return false; }

  bool start_object(std::size_t) { return Open(Json::object()); }
  bool start_array(std::size_t) { return Open(Json::array()); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }

  bool key(const string_t& value) {
    member = value;
    const std::string path = MemberPath(open.back().path, value);
    if (open.back().value->contains(value))
      throw BadDocument(Where(document, position.line) + path + " stands there twice");
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) {
    // The exception counts lines too, but says so among other things.
    std::string reason = error.what();
    reason.erase(0, std::min(reason.find("syntax error"), reason.size()));
    throw BadDocument(Where(document, NumberLine()) + (reason.empty() ? error.what() : reason));
  }

 private:
  struct Container {
    Json* value;
    std::string path;
  };

  std::size_t NumberLine() const { return position.line - (position.after_newline ? 1 : 0); }

  bool Add(Json value) { return Add(std::move(value), position.line); }
  bool Add(Json value, std::size_t line) {
    Insert(std::move(value), line);
    return true;
  }

  Container Insert(Json value, std::size_t line) {
    Container added{&root, ""};
    if (open.empty()) {
      root = std::move(value);
    } else if (Json& parent = *open.back().value; parent.is_array()) {
      added.path = EntryPath(open.back().path, parent.size());
      parent.push_back(std::move(value));
      added.value = &parent.back();
    } else {
      added.path = MemberPath(open.back().path, member);
      added.value = &(parent[member] = std::move(value));
    }
    lines[added.path] = line;
    return added;
  }

  bool Open(Json value) {
    open.push_back(Insert(std::move(value), position.line));
    return true;
  }
  bool Close() {
    open.pop_back();
    return true;
  }

  std::string document;
  const Position& position;
  Json& root;
  std::map<std::string, std::size_t>& lines;
  std::vector<Container> open;  // outermost first
  std::string member;           // of the innermost object, whose value comes next
};

}  // namespace

Document::Document(const std::string& text, std::string given_name) : name(std::move(given_name)) {
  Position position;
  Builder builder(name, position, root, lines);
  Json::sax_parse(CountingIterator(text.data(), &position),
                  CountingIterator(text.data() + text.size(), &position), &builder,
                  nlohmann::detail::input_format_t::json, true, true);
}

void Document::Refuse(const std::string& path, const std::string& reason) const {
  std::string known = path;
  while (!known.empty() && lines.find(known) == lines.end())
    known.resize(std::min(known.find_last_of(".["), known.size() - 1));
  const auto line = lines.find(known);
  throw BadDocument(Where(name, line != lines.end() ? line->second : 1) +
                    (path.empty() ? "the document" : path) + ' ' + reason);
}

std::string MemberPath(const std::string& path, const std::string& member) {
  return path.empty() ? member : path + '.' + member;
}

std::string EntryPath(const std::string& path, std::size_t index) {
  return path + '[' + std::to_string(index) + ']';
}

}  // namespace simulator
