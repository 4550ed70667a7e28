#include "wire_schema/wire_schema.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <stdexcept>

#include "wire_schema/schemas.h"

namespace wire_schema {
namespace {

struct Schema {
  std::map<std::string, WireMessage> messages;
  std::vector<WireMethod> methods;
};

// --- The schemas ---------------------------------------------------------------

// Words and the characters {}=; without comments.
std::vector<std::string> Tokens(const std::string& text) {
  constexpr const char* kMarks = "{}=;";
  std::vector<std::string> tokens;
  bool is_word = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "//") == 0) i = std::min(text.find('\n', i), text.size() - 1);
    const bool is_mark = std::string(kMarks).find(text[i]) != std::string::npos;
    const bool is_blank = std::string(" \t\n").find(text[i]) != std::string::npos;
    if (is_mark || (!is_blank && !is_word)) tokens.emplace_back();
    if (!is_blank) tokens.back() += text[i];
    is_word = !is_mark && !is_blank;
  }
  return tokens;
}

class SchemaReader {
 public:
  SchemaReader(const std::string& text, Schema& read) : tokens(Tokens(text)), schema(read) {}

  void Read() {
    while (at < tokens.size()) {
      const std::string word = Next();
      if (word == "package") {
        package = Next() + '.';
      } else if (word == "message") {
        ReadMessage();
      } else if (word == "service") {
        ReadService();
      } else if (word == "enum") {
        SkipBlock();
      }
    }
  }

 private:
  std::string Next() { return tokens[at++]; }

  void SkipBlock() {
    while (Next() != "{") {
    }
    for (int depth = 1; depth > 0;) {
      const std::string word = Next();
      depth += word == "{" ? 1 : word == "}" ? -1 : 0;
    }
  }

  // A type of the same file has no package.
  std::string FullName(const std::string& type) const {
    return type.find('.') == std::string::npos ? package + type : type;
  }

  void ReadService() {
    const std::string service = package + Next();
    Next();                              // {
    while (Next() == "rpc") {            // else }
      const std::string call = Next();   // GetName(ostrevan.common.Empty)
      Next();                            // returns
      const std::string reply = Next();  // (Name)
      Next();                            // ;
      const std::size_t bracket = call.find('(');
      const auto message = [this](const std::string& type) {
        return &schema.messages.at(FullName(type.substr(1, type.size() - 2)));
      };
      schema.methods.push_back(
          {service, call.substr(0, bracket), message(call.substr(bracket)), message(reply)});
    }
  }

  void ReadMessage() {
    WireMessage message;
    message.name = Next();
    Next();  // {
    bool is_in_oneof = false;
    for (std::string word = Next(); is_in_oneof || word != "}"; word = Next()) {
      if (word == "}") {
        is_in_oneof = false;
      } else if (word == "oneof") {
        at += 2;
        is_in_oneof = true;
      } else {
        message.fields.push_back(ReadField(word, is_in_oneof));
      }
    }
    schema.messages[package + message.name] = message;
  }

  WireField ReadField(std::string word, bool is_in_oneof) {
    WireField field;
    field.is_optional = is_in_oneof;
    field.is_repeated = word == "repeated";
    if (field.is_repeated) word = Next();
    const bool is_own = word[0] >= 'A' && word[0] <= 'Z';
    field.type = is_own || word == "rawLinkInfo" ? FullName(word) : word;
    field.name = Next();
    Next();  // =
    field.number = std::stoi(Next());
    Next();  // ;
    return field;
  }

  const std::vector<std::string> tokens;
  Schema& schema;
  std::size_t at = 0;
  std::string package;
};

const Schema& Schemas() {
  static const Schema schema = [] {
    Schema read;
    for (const char* const text : kSchemas) SchemaReader(text, read).Read();
    // What has a package and is no message is an enumeration.
    for (auto& [name, message] : read.messages)
      for (WireField& field : message.fields)
        if (field.type.find('.') != std::string::npos && read.messages.count(field.type) == 0)
          field.type = "enum";
    return read;
  }();
  return schema;
}

// --- The wire ------------------------------------------------------------------

enum WireType { kVarint = 0, kFixed64 = 1, kBytes = 2, kFixed32 = 5 };

// One field as it came.
struct Piece {
  int number = 0;
  int type = 0;
  std::uint64_t varint = 0;
  std::string bytes;  // of kBytes
  std::string all;    // with its tag
};

// Reads a message piece by piece.
class Pieces {
 public:
  explicit Pieces(const std::string& message) : bytes(message) {}

  bool IsAtEnd() const { return at == bytes.size(); }

  /// None if the bytes are no message.
  std::optional<Piece> Next() {
    const std::size_t start = at;
    std::uint64_t tag = 0;
    Piece piece;
    if (!Varint(tag)) return std::nullopt;
    piece.number = static_cast<int>(tag >> 3U);
    piece.type = static_cast<int>(tag & 7U);
    bool is_read = piece.number != 0;
    std::uint64_t size = 0;
    if (piece.type == kVarint) {
      is_read = is_read && Varint(piece.varint);
    } else if (piece.type == kBytes) {
      is_read = is_read && Varint(size) && Take(size, piece.bytes);
    } else {
      size = piece.type == kFixed64 ? 8 : 4;
      is_read = is_read && (size == 8 || piece.type == kFixed32) && Take(size, piece.bytes);
    }
    if (!is_read) return std::nullopt;
    piece.all = bytes.substr(start, at - start);
    return piece;
  }

  bool Varint(std::uint64_t& value) {
    value = 0;
    for (unsigned shift = 0; shift < 64 && at < bytes.size(); shift += 7) {
      const auto byte = static_cast<std::uint8_t>(bytes[at++]);
      value |= static_cast<std::uint64_t>(byte & 0x7fU) << shift;
      if (byte < 0x80) return true;
    }
    return false;
  }

 private:
  bool Take(std::uint64_t size, std::string& taken) {
    if (size > bytes.size() - at) return false;
    taken = bytes.substr(at, size);
    at += size;
    return true;
  }

  const std::string& bytes;
  std::size_t at = 0;
};

void AppendVarint(std::uint64_t value, std::string& bytes) {
  for (; value >= 0x80; value >>= 7U) bytes += static_cast<char>((value & 0x7fU) | 0x80U);
  bytes += static_cast<char>(value);
}

void AppendTag(int number, WireType type, std::string& bytes) {
  AppendVarint(static_cast<std::uint64_t>(number) << 3U | type, bytes);
}

void AppendBytes(int number, const std::string& value, std::string& bytes) {
  AppendTag(number, kBytes, bytes);
  AppendVarint(value.size(), bytes);
  bytes += value;
}

const WireField* FindField(const WireMessage& message, const Piece& piece) {
  const auto found =
      std::find_if(message.fields.begin(), message.fields.end(),
                   [&](const WireField& field) { return field.number == piece.number; });
  if (found == message.fields.end()) return nullptr;
  const bool is_text = found->type == "string" || FindMessage(found->type) != nullptr;
  const bool fits = is_text ? piece.type == kBytes
                            : piece.type == kVarint || (piece.type == kBytes && found->is_repeated);
  return fits ? &*found : nullptr;
}

Json Number(const WireField& field, std::uint64_t value) {
  if (field.type == "bool") return value != 0;
  if (field.type == "uint64") return value;
  if (field.type == "uint32") return static_cast<std::uint32_t>(value);
  return static_cast<std::int32_t>(value);
}

Json Default(const WireField& field) {
  if (field.is_repeated) return Json::array();
  if (field.is_optional || FindMessage(field.type) != nullptr) return nullptr;
  return field.type == "string" ? Json("") : Number(field, 0);
}

// The number in a field, as the wire has it.
std::uint64_t Varint(const WireField& field, const Json& value) {
  if (field.type == "bool" && value.is_boolean()) return value.get<bool>() ? 1 : 0;
  if (field.type != "bool" && value.is_number_integer()) {
    const bool is_signed = field.type == "int32" || field.type == "enum";
    const auto number = is_signed ? static_cast<std::uint64_t>(value.get<std::int64_t>())
                                  : value.get<std::uint64_t>();
    if (Number(field, number) == value) return number;
  }
  throw std::invalid_argument("field '" + field.name + "' must be of type " + field.type);
}

void EncodeValue(const WireField& field, const Json& value, std::string& bytes) {
  if (const WireMessage* const inner = FindMessage(field.type)) {
    AppendBytes(field.number, Encode(*inner, value), bytes);
  } else if (field.type != "string") {
    const std::uint64_t number = Varint(field, value);
    if (number == 0 && !field.is_optional && !field.is_repeated) return;
    AppendTag(field.number, kVarint, bytes);
    AppendVarint(number, bytes);
  } else if (!value.is_string()) {
    throw std::invalid_argument("field '" + field.name + "' must be a string");
  } else if (!value.get_ref<const std::string&>().empty() || field.is_repeated) {
    AppendBytes(field.number, value, bytes);
  }
}

void EncodeList(const WireField& field, const Json& list, std::string& bytes) {
  if (!list.is_array()) throw std::invalid_argument("field '" + field.name + "' must be a list");
  if (field.type == "string" || FindMessage(field.type) != nullptr) {
    for (const Json& entry : list) EncodeValue(field, entry, bytes);
    return;
  }
  std::string packed;
  for (const Json& entry : list) AppendVarint(Varint(field, entry), packed);
  if (!packed.empty()) AppendBytes(field.number, packed, bytes);
}

}  // namespace

const WireMessage* FindMessage(const std::string& full_name) {
  const auto found = Schemas().messages.find(full_name);
  return found != Schemas().messages.end() ? &found->second : nullptr;
}

const std::vector<WireMethod>& AllMethods() { return Schemas().methods; }

Json Decode(const WireMessage& message, const std::string& bytes) {
  Json json = Json::object();
  for (const WireField& field : message.fields) json[field.name] = Default(field);
  std::map<int, std::string> parts;  // of messages, which add up
  const auto set = [&json](const WireField& field, const Json& value) {
    if (field.is_repeated)
      json[field.name].push_back(value);
    else
      json[field.name] = value;
  };
  for (Pieces pieces(bytes); !pieces.IsAtEnd();) {
    const std::optional<Piece> piece = pieces.Next();
    if (!piece.has_value()) return nullptr;
    const WireField* const field = FindField(message, *piece);
    if (field == nullptr) continue;
    if (const WireMessage* const inner = FindMessage(field->type)) {
      std::string& part = parts[field->number];
      part = field->is_repeated ? piece->bytes : part + piece->bytes;
      const Json value = Decode(*inner, part);
      if (value.is_null()) return nullptr;
      set(*field, value);
    } else if (field->type == "string") {
      set(*field, piece->bytes);
    } else if (piece->type == kVarint) {
      set(*field, Number(*field, piece->varint));
    } else {
      std::uint64_t value = 0;
      for (Pieces packed(piece->bytes); !packed.IsAtEnd(); set(*field, Number(*field, value)))
        if (!packed.Varint(value)) return nullptr;
    }
  }
  return json;
}

std::string Encode(const WireMessage& message, const Json& json) {
  if (!json.is_object()) throw std::invalid_argument(message.name + " must be an object");
  for (const auto& [name, value] : json.items())
    if (std::none_of(message.fields.begin(), message.fields.end(),
                     [&name = name](const WireField& field) { return field.name == name; }))
      throw std::invalid_argument(message.name + " has no field '" + name + "'");
  std::string bytes;
  for (const WireField& field : message.fields) {
    const auto found = json.find(field.name);
    if (found == json.end() || found->is_null()) continue;
    field.is_repeated ? EncodeList(field, *found, bytes) : EncodeValue(field, *found, bytes);
  }
  return bytes;
}

std::optional<std::string> Rewrite(const WireMessage& message, const std::string& bytes,
                                   const Replace& replace) {
  std::string written;
  for (Pieces pieces(bytes); !pieces.IsAtEnd();) {
    std::optional<Piece> piece = pieces.Next();
    if (!piece.has_value()) return std::nullopt;
    const WireField* const field = FindField(message, *piece);
    if (field == nullptr) continue;
    const WireMessage* const inner = FindMessage(field->type);
    std::optional<std::string> value = piece->bytes;
    if (inner != nullptr) value = Rewrite(*inner, piece->bytes, replace);
    if (field->type == "string") value = replace(message.name + '.' + field->name, piece->bytes);
    if (!value.has_value()) return std::nullopt;
    if (value == piece->bytes) {
      written += piece->all;
    } else {
      AppendBytes(piece->number, *value, written);
    }
  }
  return written;
}

}  // namespace wire_schema
