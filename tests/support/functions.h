// Every function of the library in one table: which calls it makes, in which
// order and with which bytes, what it hands out, and what follows when one of
// the calls fails.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/device.h"
#include "tests/support/show.h"

namespace support {

/// One call to a daemon that a function makes.
struct Step {
  std::string path;
  std::string request;  // exact bytes
  std::string reply;    // the bytes of a good answer
  bool confirms;        // the reply is a Success: false in it is a failure too

  // When this step fails, by its status or by success false:
  std::string line;          // what is printed for it, exactly; empty for silence
  bool goes_on = false;      // whether the steps after it are made
  bool result = false;       // what the function gives when only this step fails
  std::string outputs = {};  // the outputs when only this step fails
};

struct Function {
  std::string name;
  bool done = true;  // the result when every step succeeds
  /// Calls the function with outputs that hold something, and shows them after.
  std::function<bool(std::string& outputs)> call;
  std::vector<Step> steps;
  std::string outputs = {};         // when every step succeeds
  std::string failed_outputs = {};  // when every step fails
  std::string printed = {};         // what is printed in every case, before all else
};
std::ostream& operator<<(std::ostream& out, const Function& function);

/// The 19 functions of NetworkgRPC, the 3 C functions and the 25 of DantegRPC.
/// Calls expect the clients to be built against a Device.
std::vector<Function> NetworkFunctions();
std::vector<Function> DanteFunctions();
std::vector<Function> AllFunctions();

/// Lets the device answer every step of the function well.
void ScriptSuccess(Device& device, const Function& function);

/// Makes the answer to one request: `step` is the table's step of that request,
/// null when there is none.
using Answering = std::function<Answer(const Step* step, const std::string& request)>;
Answer AnswerWell(const Step* step, const std::string& request);

/// Lets the device answer every step of these functions from now on, in any order
/// and as often as asked. The list of interfaces becomes the table's, so build the
/// clients before.
void ScriptForGood(Device& device, const std::vector<Function>& functions,
                   const Answering& answering = AnswerWell);

// --- What the table is made with ----------------------------------------------

/// The text that readers hand out: too long to be kept without an allocation.
inline constexpr const char* kAfter = "after, and longer than a small string";

/// A call of a plain reader.
Step Ask(std::string path, const google::protobuf::MessageLite& request,
         const google::protobuf::MessageLite& reply, std::string line);
/// A call whose reply is a Success.
Step Confirm(std::string path, const google::protobuf::MessageLite& request, std::string line);

/// A function with one output: `before` goes in, `after` comes out on success.
template <class Output>
Function Reader(std::string name, bool (*function)(Output&), Output before, Output after,
                std::vector<Step> steps) {
  for (Step& step : steps)
    if (step.outputs.empty()) step.outputs = Show(before);
  return {std::move(name),
          true,
          [=](std::string& outputs) {
            Output output = before;
            const bool done = function(output);
            outputs = Show(output);
            return done;
          },
          std::move(steps),
          Show(after),
          Show(before)};
}

/// A function without outputs.
Function Changer(std::string name, std::function<bool()> function, std::vector<Step> steps);

}  // namespace support
