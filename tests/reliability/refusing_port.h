#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

#include "tests/support/loopback_listener.h"

/// A port of 127.0.0.1 that refuses connections: it is taken, but nothing listens on it.
class RefusingPort {
 public:
  /// Throws std::system_error.
  RefusingPort() {
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
    if (::bind(socket_, anyAddress, size) != 0 || ::getsockname(socket_, anyAddress, &size) != 0) {
      throw std::system_error(errno, std::generic_category(), "no port to take");
    }
    port_ = ntohs(address.sin_port);
  }
  RefusingPort(const RefusingPort&) = delete;
  RefusingPort& operator=(const RefusingPort&) = delete;
  ~RefusingPort() { ::close(socket_); }

  [[nodiscard]] std::uint16_t port() const { return port_; }

 private:
  int socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
  std::uint16_t port_ = 0;
};
