// Every function of the library in one table: how it is called, which RPCs it makes, in
// which order and with which bytes, what it hands out, and what follows when one of
// them fails. Tests, benchmarks and the daemons that answer both read this table;
// there is no other list of the functions.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "support/device.h"
#include "support/show.h"

namespace support {

/// One RPC that a function makes.
struct Step {
  std::string path;
  std::string request;   // exact bytes
  std::string reply;     // the bytes of a good answer
  bool replies_success;  // the reply is a Success: false in it is a failure, too

  // When this RPC fails, by its status or by success false:
  std::string line;          // what is printed, exactly; empty for nothing
  bool continues = false;    // the function makes the next RPC nevertheless
  bool result = false;       // what the function returns when only this RPC fails
  std::string outputs = {};  // the outputs when only this RPC fails
};

struct Function {
  std::string name;
  /// Calls the function as an application does, with outputs that are empty and with
  /// nothing around the call, so that what is measured is the library. True on success.
  bool (*plain_call)();
  /// Calls the function with outputs that are not empty, and converts them to a string.
  std::function<bool(std::string& outputs)> call;
  std::vector<Step> steps;
  std::string outputs = {};         // when every step succeeds
  std::string failed_outputs = {};  // when every step fails
  std::string printed = {};         // what is printed in every case, before anything else
  std::string exception_line = {};  // what is printed when memory runs out
  std::size_t heap_copies = 0;      // what a plain call copies onto the heap for its caller
};
std::ostream& operator<<(std::ostream& out, const Function& function);

/// The functions of NetworkgRPC and the C functions; those of DantegRPC; all of them.
/// Calls expect the clients to be built against a Device.
std::vector<Function> NetworkFunctions();
std::vector<Function> DanteFunctions();
std::vector<Function> AllFunctions();

/// The one of this name; throws std::out_of_range when there is none.
Function FunctionNamed(const std::string& name);

/// Makes the device send the good answer to each step of the function, once.
void ScriptOnce(Device& device, const Function& function);

/// Returns the answer to one request. `step` is the step of the table with this request,
/// or null.
using Answering = std::function<Answer(const Step* step, const std::string& request)>;
Answer AnswerWell(const Step* step, const std::string& request);

/// Makes the device answer every step of these functions from now on, in any order and any
/// number of times. The list of interfaces becomes the table's, so build the clients before.
void ScriptAlways(Device& device, const std::vector<Function>& functions,
                  const Answering& answering = AnswerWell);

// --- How entries are made ----------------------------------------------

/// A string that functions hand out: too long to be kept without an allocation.
inline constexpr const char* kAfter = "after, and longer than a small string";

/// An RPC that reads something.
Step ReadStep(std::string path, const google::protobuf::MessageLite& request,
              const google::protobuf::MessageLite& reply, std::string line);
/// An RPC that changes something: its reply is a Success.
Step ChangeStep(std::string path, const google::protobuf::MessageLite& request, std::string line);

/// A function without outputs.
Function Changer(std::string name, bool (*call)(), std::vector<Step> steps);

/// The same function, but its line for a caught exception has no exception text.
Function WithNameOnlyExceptionLine(Function function);

template <class Function>
struct ReaderTraits;
template <class Record>
struct ReaderTraits<bool (*)(Record&)> {
  using Output = Record;
};
/// What a function of the form bool(Output&) hands out.
template <auto function>
using OutputOf = typename ReaderTraits<decltype(function)>::Output;

/// A function with one output: `before` goes in, `after` comes out on success.
template <auto function>
Function Reader(std::string name, OutputOf<function> before, const OutputOf<function>& after,
                std::vector<Step> steps) {
  Function made = Changer(
      std::move(name),
      [] {
        OutputOf<function> output{};
        return function(output);
      },
      std::move(steps));
  for (Step& step : made.steps)
    if (step.outputs.empty()) step.outputs = Show(before);
  made.outputs = Show(after);
  made.failed_outputs = Show(before);
  made.call = [before = std::move(before)](std::string& outputs) {
    OutputOf<function> output = before;
    const bool result = function(output);
    outputs = Show(output);
    return result;
  };
  return made;
}

}  // namespace support
