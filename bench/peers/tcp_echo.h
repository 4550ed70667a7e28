// The least that two processes can do over TCP: a few bytes sent and echoed, without
// framing, names or types.
#pragma once

#include "bench/peers/forked_server.h"

namespace bench {

class TcpEcho {
 public:
  TcpEcho();
  ~TcpEcho();

  TcpEcho(const TcpEcho&) = delete;
  TcpEcho& operator=(const TcpEcho&) = delete;

  /// Sends the bytes and receives them back.
  bool Exchange() const;

 private:
  int listener;
  ForkedServer server;
  int connection;
};

}  // namespace bench
