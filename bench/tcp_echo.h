// As little as two processes can do to ask and answer over TCP: a few bytes there
// and back, without framing, names or types.
#pragma once

#include "bench/companion.h"

namespace bench {

class TcpEcho {
 public:
  TcpEcho();
  ~TcpEcho();

  TcpEcho(const TcpEcho&) = delete;
  TcpEcho& operator=(const TcpEcho&) = delete;

  /// One question and its answer.
  bool Ask() const;

 private:
  int listener;
  Companion server;
  int connection;
};

}  // namespace bench
