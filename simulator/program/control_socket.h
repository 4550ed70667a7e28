// A Unix socket that answers each connection's line with one line. Clients that send
// or read slowly hold up neither others nor the end.
#pragma once

#include <poll.h>

#include <chrono>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <thread>

#include "simulator/acceptor.h"
#include "simulator/descriptor.h"

namespace simulator {

class ControlSocket {
 public:
  /// None yet: to be asked again after Retry.
  using Answer = std::function<std::optional<std::string>(const std::string& request)>;

  /// Listens on `path`, which only this user can connect to: creates the folder
  /// with mode 0700 if it does not exist, and the socket with mode 0600. Throws std::runtime_error,
  /// also if others have access to the folder or another simulator listens on the socket.
  explicit ControlSocket(std::string path);
  /// Stops answering, and removes the socket.
  ~ControlSocket();

  ControlSocket(const ControlSocket&) = delete;
  ControlSocket& operator=(const ControlSocket&) = delete;

  /// Answers requests from now on, in a thread of its own. To be called once.
  void Serve(Answer answer);

  /// Stops answering.
  void Stop();

  /// Asks again for the answers that were none yet. For any thread.
  void Retry() { Signal(retrying); }

 private:
  class Client;

  void Run(const Answer& answer);
  static void Continue(std::list<Client>& clients, const pollfd* found, bool retries,
                       const Answer& answer);
  static int TimeLimit(const std::list<Client>& clients, bool is_ready);

  std::string path;
  Acceptor acceptor;
  Descriptor listening;
  Descriptor ending = MakeEvent();  // readable when the thread is to end
  Descriptor retrying = MakeEvent();
  std::thread thread;
};

/// Sends one line to the socket at `path` and returns the answer; none if there is none
/// within this time. Throws std::runtime_error.
std::optional<std::string> AskControl(const std::string& path, const std::string& request,
                                      std::chrono::milliseconds limit);

}  // namespace simulator
