// What all facade functions share: one handler for std::exception, one
// formatted write per diagnostic, one test of a confirmed change.
//
// What differs is at the function: its name, the line that a caught exception
// prints, the line that a failed request prints (kNoLine if none), and an output
// that a failure sets to false.
#pragma once

#include <grpcpp/support/status.h>

#include <exception>

namespace call_frame {

/// What a caught exception prints. Devices in use rely on both wordings.
enum class ExceptionLine {
  kNameAndText,  // "libNetworkgRPC: C++ exception in %s(): %s\n"
  kNameOnly,     // "libNetworkgRPC: ERROR: exception in %s\n"
};

/// The failure line of a function that prints nothing if its request fails.
inline constexpr const char* kNoLine = nullptr;

/// Prints one diagnostic to standard error in one formatted write, so that lines
/// of several threads are never mixed.
[[gnu::format(printf, 1, 2)]] void Print(const char* format, ...);

/// Whether the daemon confirmed a change: the status is OK and `success` in the reply
/// is true.
template <class Success>
bool Confirmed(const grpc::Status& status, const Success& reply) {
  return status.ok() && reply.success();
}

struct Frame {
  const char* name;  // unqualified, as the function's lines print it
  ExceptionLine exception_line;
  bool* reset = nullptr;  // an output that a failure sets to false

  /// Runs the function's body. If it throws a std::exception, prints the line of
  /// a caught exception and returns false; other exceptions pass to the caller.
  template <class Body>
  bool Run(Body&& body) const {
    try {
      return body();
    } catch (const std::exception& error) {
      return Caught(error);
    }
  }

  /// Sets `reset` to false, prints the failure line, whose one %s is the
  /// function's name, and returns false.
  bool Fail(const char* line) const;

 private:
  bool Caught(const std::exception& error) const;
};

/// A function that reads: one RPC without parameters, which succeeds if its status
/// is OK. `copy` copies the reply to the outputs, and may move strings out of it.
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

/// A function that changes something: one RPC, which the daemon must confirm.
/// `fill` fills the request from the arguments.
template <class Client, class Request, class Success, class Fill>
bool Change(const Frame& frame, grpc::Status (Client::*call)(const Request&, Success*),
            const char* failure_line, Fill&& fill) {
  return frame.Run([&] {
    Request request;
    Success reply;
    fill(request);
    if (!Confirmed((Client::GetInstance().*call)(request, &reply), reply))
      return frame.Fail(failure_line);
    return true;
  });
}

/// The same for an RPC without parameters.
template <class Client, class Success>
bool Change(const Frame& frame, grpc::Status (Client::*call)(Success*), const char* failure_line) {
  return frame.Run([&] {
    Success reply;
    if (!Confirmed((Client::GetInstance().*call)(&reply), reply)) return frame.Fail(failure_line);
    return true;
  });
}

}  // namespace call_frame
