// Messages of the schemas as JSON, and with strings replaced. protobuf's lite runtime
// does not know the names of fields: they are read from the schemas in proto/, which are
// part of the program.
//
// Internal: the installed simulator library contains it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "state_document/json.h"

namespace wire_schema {

using state_document::Json;

struct WireField {
  int number = 0;
  std::string name;
  std::string type;  // "int32", "string"; a message with its package; "enum"
  bool is_repeated = false;
  bool is_optional = false;  // absent is not the same as zero
};

struct WireMessage {
  std::string name;  // without the package
  std::vector<WireField> fields;
};

struct WireMethod {
  std::string service;  // "ostrevan.grpcdapi.DAPI"
  std::string name;     // "GetName"
  const WireMessage* request = nullptr;
  const WireMessage* reply = nullptr;
};

/// The methods of both services, as the schemas list them.
const std::vector<WireMethod>& AllMethods();

/// The message of this full name, "ostrevan.grpcdapi.Name"; null if there is none.
const WireMessage* FindMessage(const std::string& full_name);

/// The message as JSON: every field of the schema with its name, repeated ones as lists,
/// absent messages and options as null, enumerations as numbers. Null if the bytes are no
/// message. Unknown fields are left out.
Json Decode(const WireMessage& message, const std::string& bytes);

/// The other way. Fields that are absent or null are not sent. Throws
/// std::invalid_argument, which names the field that the message does not have or whose
/// value does not fit.
std::string Encode(const WireMessage& message, const Json& json);

/// Returns the new value of a string field, "Name.name".
using Replace = std::function<std::string(const std::string& field, const std::string& value)>;

/// The message with its strings replaced and without unknown fields; none if the bytes
/// are no message.
std::optional<std::string> Rewrite(const WireMessage& message, const std::string& bytes,
                                   const Replace& replace);

}  // namespace wire_schema
