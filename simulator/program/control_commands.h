// The commands of the control socket, which `networkgrpc-simulator ctl` sends, and of
// scenarios.
//
// A request is one line, {"command": "fault", "device": 1, "argument":
// "GetName:reject"}; its answer is one line, {"ok": true, "result": ...} or
// {"ok": false, "error": "why"}. Commands, arguments and results:
//
//   state   the state document         fault FAULT     null; also a list of faults
//   calls   a list of calls            clear METHOD    null; "all" clears all; also a list
//   forget  null                       stop DAEMON     null; DAPI, NetworkManager
//   faults  a list of strings          start DAEMON    null
//   set {PATH: VALUE, ...}   null      restart DAEMON  null
//   load {STATE DOCUMENT}    null      drop DAEMON     null
//   devices                  a list: name, endpoints, streams and their receivers
//   wait METHOD              null, when "count" (default 1) calls of it are recorded
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/json.h"
#include "simulator/simulator.h"

namespace simulator {

/// The answer to one request, both without the newline. None yet for a request that
/// waits: to be called again after the next call.
std::optional<std::string> AnswerControlRequest(std::vector<Simulator>& devices,
                                                const std::string& request);

/// Carries out the command of this name, except wait, on a device by its number from 1 on.
/// Throws std::exception.
Json Perform(std::vector<Simulator>& devices, std::int64_t device, const std::string& name,
             const Json& argument);

/// Throws std::exception if the command cannot have the argument.
void CheckArgument(const std::string& command, const Json& argument);

}  // namespace simulator
