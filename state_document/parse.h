// Parses a state document and checks every value when it comes; and any other JSON.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "state_document/json.h"

namespace state_document {

/// By the path of a list of objects, such as "network.interfaces": the line on
/// which each entry begins.
using EntryLines = std::map<std::string, std::vector<std::size_t>>;

/// Throws BadDocument; `file` stands for the text in its message.
void Parse(const std::string& text, const std::string& file, Json& root, EntryLines& lines);

/// JSON of any shape, with comments. Throws std::runtime_error if it is not JSON, or nested
/// deeper than 100 levels: what writes it out is recursive.
Json ParseJson(const std::string& text);

/// What BadDocument says: "FILE:LINE: reason".
std::string Message(const std::string& file, std::size_t line, const std::string& reason);

}  // namespace state_document
