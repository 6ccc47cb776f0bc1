#pragma once

#include <netinet/in.h>

#include <cstdint>

/// The address of a port of 127.0.0.1.
sockaddr_in loopback(std::uint16_t port);

/// A socket that listens on a port of 127.0.0.1, which the system chooses.
class LoopbackListener {
 public:
  /// `queue`: how many connections may wait to be accepted. Throws std::system_error if it cannot
  /// listen.
  explicit LoopbackListener(int queue);
  ~LoopbackListener();
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  int socket() const { return socket_; }
  std::uint16_t port() const { return port_; }

  /// Waits for the next connection, which the caller owns. -1 if that fails.
  int accept() const;

 private:
  int socket_;
  std::uint16_t port_ = 0;
};
