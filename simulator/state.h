// The whole of a simulated device as one JSON document, which `networkgrpc
// export` and `networkgrpc import` share (docs/simulator.md describes it).
#pragma once

#include <string>
#include <vector>

#include "simulator/bad_document.h"
#include "simulator/fault.h"
#include "simulator/model.h"

namespace simulator {

struct State {
  Device device;
  std::vector<Fault> faults;
};

/// The state that `text` describes; a member that it lacks is that of
/// `defaults`. Throws BadDocument, in whose message `name` stands for the text.
State ReadState(const std::string& text, const std::string& name, const State& defaults);

/// The document, every member of it, with a newline at its end. Reading it gives
/// the same state.
std::string WriteState(State state);

/// As ReadState and WriteState do, from and to a file, which is replaced as a
/// whole or not at all. Throw std::runtime_error when that cannot be done.
State LoadState(const std::string& file, const State& defaults);
void SaveState(const std::string& file, const State& state);

/// Throws what SaveState would throw for a file that cannot be written.
void CheckSavable(const std::string& file);

}  // namespace simulator
