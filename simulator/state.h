// The whole state of a simulated device as one JSON document: see
// state_document/table.h, and docs/simulator.md for users.
#pragma once

#include <string>
#include <vector>

#include "simulator/fault.h"
#include "simulator/json.h"
#include "simulator/model.h"
#include "state_document/bad_document.h"
#include "state_document/document.h"

namespace simulator {

using state_document::BadDocument;

struct State {
  Device device;
  std::vector<Fault> faults;
};

/// The state that `text` describes; what it lacks is taken from `defaults`.
/// Throws BadDocument, whose message has `name` for the file.
State ReadState(const std::string& text, const std::string& name, const State& defaults);
/// The same of a document that has been read.
State ReadState(const state_document::Document& document, const State& defaults);

/// The document with every member, and a line feed at its end. Reading it returns
/// the same state.
std::string WriteState(State state);
/// The same as JSON.
Json ToJson(State state);

/// The same from and to a file, which is replaced as a whole or not at all
/// (state_document/save_file.h). Throw std::runtime_error if the file cannot be
/// read or written.
State LoadState(const std::string& file, const State& defaults);
void SaveState(const std::string& file, const State& state);

}  // namespace simulator
