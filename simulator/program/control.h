// What a running simulator does when it is asked through its control socket.
//
// The request is one line, {"command": "fault", "device": 1, "argument":
// "GetName:refuse"}; so is the answer, {"ok": true, "result": ...} or {"ok":
// false, "error": "why"}. Commands, with what result is:
//
//   state   the state document         fault FAULT   null
//   calls   a list of calls            clear METHOD  null; all for all
//   forget  null                       stop DAEMON   null; DAPI, NetworkManager
//   faults  a list of texts            start DAEMON  null
//                                      drop DAEMON   null
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/simulator.h"

namespace simulator {

using Devices = std::vector<std::unique_ptr<Simulator>>;

/// The answer to one request, both without the newline.
std::string AnswerControl(const Devices& devices, const std::string& request);

}  // namespace simulator
