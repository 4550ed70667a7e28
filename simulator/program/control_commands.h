// The commands of the control socket, which `networkgrpc-simulator ctl` sends.
//
// A request is one line, {"command": "fault", "device": 1, "argument":
// "GetName:reject"}; its answer is one line, {"ok": true, "result": ...} or
// {"ok": false, "error": "why"}. Commands and their results:
//
//   state   the state document         fault FAULT   null
//   calls   a list of calls            clear METHOD  null; "all" clears all
//   forget  null                       stop DAEMON   null; DAPI, NetworkManager
//   faults  a list of strings          start DAEMON  null
//                                      drop DAEMON   null
#pragma once

#include <string>
#include <vector>

#include "simulator/simulator.h"

namespace simulator {

/// The answer to one request, both without the newline.
std::string AnswerControlRequest(std::vector<Simulator>& devices, const std::string& request);

}  // namespace simulator
