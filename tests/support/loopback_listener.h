#pragma once

#include <netinet/in.h>

#include <cstdint>

/// That port of 127.0.0.1.
sockaddr_in loopback(std::uint16_t port);

/// A socket that listens on a port of 127.0.0.1 which the system chose, closed with its owner.
class LoopbackListener {
 public:
  /// Room for that many connections that nobody has accepted yet. Throws std::system_error when
  /// it can't listen.
  explicit LoopbackListener(int queue);
  ~LoopbackListener();
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  int socket() const { return socket_; }
  std::uint16_t port() const { return port_; }

  /// The next connection, which the caller owns; waits for one. -1 when that fails.
  int accept() const;

 private:
  int socket_;
  std::uint16_t port_ = 0;
};
