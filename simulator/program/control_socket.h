// A unix socket on which one line is asked and one line answered.
#pragma once

#include <functional>
#include <string>
#include <thread>

namespace simulator {

class ControlSocket {
 public:
  /// Listens at `path`, which only this user can reach: makes the folder with
  /// mode 0700 when it is not there, and the socket with mode 0600. To be called
  /// before other threads start, as it changes the process' umask for a moment.
  /// Throws std::runtime_error, also when others have access to the folder or
  /// another simulator listens there.
  explicit ControlSocket(std::string path);
  /// Stops answering, and removes the socket.
  ~ControlSocket();

  ControlSocket(const ControlSocket&) = delete;
  ControlSocket& operator=(const ControlSocket&) = delete;

  const std::string& Path() const { return path; }

  /// From now on, in a thread of its own; once.
  void Serve(std::function<std::string(const std::string& request)> answer);

 private:
  void Run(const std::function<std::string(const std::string& request)>& answer) const;

  std::string path;
  int listening = -1;
  int ending = -1;  // readable when the thread is to end
  std::thread thread;
};

/// Asks one line of the socket at `path` and gives the answer. Throws
/// std::runtime_error when nobody answers within 20 seconds.
std::string AskControl(const std::string& path, const std::string& request);

}  // namespace simulator
