// Reads and writes a state document. What table.h does not allow is reported with
// file and line, in these words, whichever program reads the document:
//
//   state.json:3: network.hostname: must be a string
//
// A document is JSON; comments (// and /* */) are allowed. It is checked while it
// is read, the first fault ends that: a value that the table does not know is
// never descended into, so that no input is nested deeper than the table.
#pragma once

#include <cstddef>
#include <istream>
#include <map>
#include <string>
#include <vector>

#include "state_document/bad_document.h"
#include "state_document/json.h"

namespace state_document {

/// A longer document is rejected.
inline constexpr std::size_t kMostBytes = 16U << 20U;

/// A document that agrees with the table. Where a number has a name, it has the
/// name, also if the text has the number.
class Document {
 public:
  /// `name` stands for the text in messages, usually a file name. Throws
  /// BadDocument.
  Document(const std::string& text, std::string name);

  const Json& Root() const { return root; }

  /// Throws BadDocument for an entry of a list such as "faults".
  [[noreturn]] void Reject(const std::string& list, std::size_t entry,
                           const std::string& reason) const;

 private:
  void CheckRouting() const;

  std::string name;
  Json root;
  std::map<std::string, std::vector<std::size_t>> lines;  // of the entries of a list, by its path
};

/// The text of a stream or file, which must be a regular file or a pipe; not much more
/// than kMostBytes of it. Throw std::runtime_error if it cannot be read.
std::string ReadText(std::istream& stream, const std::string& name);
std::string ReadTextFile(const std::string& file);

/// The document in it. Throw BadDocument as well.
Document Read(std::istream& stream, const std::string& name);
Document ReadFile(const std::string& file);

/// The text of a document, with a line feed at its end. Bytes that are not UTF-8
/// are replaced.
std::string ToText(const Json& document);

}  // namespace state_document
