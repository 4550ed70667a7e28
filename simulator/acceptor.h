// Accepts connections to listening sockets, also when the process has used up its
// file descriptors: one is kept in reserve for that moment. Without it, a connection
// could be neither accepted nor rejected, and poll would return at once for ever.
//
// The shortage and its end are reported on standard error, one line each.
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "simulator/descriptor.h"

namespace simulator {

/// For one thread.
class Acceptor {
 public:
  /// `name` stands for the sockets in reports.
  explicit Acceptor(std::string name);

  /// Accepts a connection from a listening socket that does not block, for which
  /// poll has reported one; closed if there is none after all.
  Descriptor Accept(int listening);

  /// To be called before every poll, once a connection that has taken the place of
  /// the reserve is closed. If false, do not accept, but try again after kRetryMs.
  bool IsReady();
  static constexpr int kRetryMs = 100;

  /// The connection accepted last has taken the place of the reserve.
  bool IsShort() const { return !reserve.IsOpen(); }

 private:
  void Report(bool is_short, int error);

  std::string name;
  Descriptor reserve;
  bool pauses = false;  // poll would return at once
  bool has_reported_shortage = false;
};

/// Accepts connections in a thread of its own. When no file descriptor is left, they
/// are closed at once.
class AcceptingThread {
 public:
  using Handler = std::function<void(int listening, Descriptor connection)>;

  /// The sockets must outlive the object.
  AcceptingThread(std::string name, std::vector<int> listening, Handler handle);
  ~AcceptingThread();

  AcceptingThread(const AcceptingThread&) = delete;
  AcceptingThread& operator=(const AcceptingThread&) = delete;

 private:
  void Run();

  Acceptor acceptor;
  const std::vector<int> sockets;
  const Handler handler;
  Descriptor ending;  // readable when the thread is to end
  std::thread thread;
};

/// A descriptor for poll that becomes readable with Signal.
Descriptor MakeEvent();
void Signal(const Descriptor& event);

}  // namespace simulator
