// The frame that every facade function shares: one guard for std::exception,
// one formatted write per diagnostic, one test of a confirmed change.
//
// What differs between functions is said at the function: its name, the line
// that a caught exception prints, the line that a failed call prints (kNoLine
// for the ones that stay silent), and a flag that a failure resets.
#pragma once

#include <grpcpp/support/status.h>

#include <exception>

namespace call_frame {

/// What a caught exception prints. Both wordings are in use on devices.
enum class ExceptionLine {
  kNameAndText,  // "libNetworkgRPC: C++ exception in %s(): %s\n"
  kNameOnly,     // "libNetworkgRPC: ERROR: exception in %s\n"
};

/// The failure line of a function that fails silently.
inline constexpr const char* kNoLine = nullptr;

/// Writes one diagnostic to standard error in one piece, so that the lines of
/// several threads never tear.
[[gnu::format(printf, 1, 2)]] void Print(const char* format, ...);

/// The one test of a call that changes something: the call went through and
/// the daemon says that it carried the request out.
template <class Success>
bool Confirmed(const grpc::Status& status, const Success& reply) {
  return status.ok() && reply.success();
}

struct Frame {
  const char* name;  // the function's unqualified name, as its lines print it
  ExceptionLine exception_line;
  bool* reset = nullptr;  // an output that a failure sets to false

  /// Runs the function's body. A std::exception becomes its line and false; an
  /// exception of any other type passes to the caller.
  template <class Body>
  bool Run(Body&& body) const {
    try {
      return body();
    } catch (const std::exception& error) {
      return Caught(error);
    }
  }

  /// Resets the output that a failure resets, prints the function's failure
  /// line, whose one %s is the function's name, and returns false.
  bool Fail(const char* line) const;

 private:
  bool Caught(const std::exception& error) const;
};

/// A function that reads: one call without parameters, judged by its status
/// alone; `copy` hands the reply out, and may take its texts away.
template <class Client, class Reply, class Copy>
bool Read(const Frame& frame, grpc::Status (Client::*call)(Reply*), const char* failure_line,
          Copy&& copy) {
  return frame.Run([&] {
    Reply reply;
    if (!(Client::GetInstance().*call)(&reply).ok()) return frame.Fail(failure_line);
    copy(reply);
    return true;
  });
}

/// A function that changes something: `fill` makes the request out of the
/// arguments; the daemon must confirm.
template <class Client, class Request, class Success, class Fill>
bool Change(const Frame& frame, grpc::Status (Client::*call)(const Request&, Success*),
            const char* failure_line, Fill&& fill) {
  return frame.Run([&] {
    Request request;
    Success reply;
    fill(request);
    return Confirmed((Client::GetInstance().*call)(request, &reply), reply) ||
           frame.Fail(failure_line);
  });
}

/// The same for a change that has no parameters.
template <class Client, class Success>
bool Change(const Frame& frame, grpc::Status (Client::*call)(Success*), const char* failure_line) {
  return frame.Run([&] {
    Success reply;
    return Confirmed((Client::GetInstance().*call)(&reply), reply) || frame.Fail(failure_line);
  });
}

}  // namespace call_frame
