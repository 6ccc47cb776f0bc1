#pragma once

#include <sys/socket.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "tests/support/request_end.h"

/// Sends everything, unless the other end has gone.
inline void sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), 0);
    if (sent <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

/// Receives a whole request, or the part of it that arrives before the other end has gone.
inline std::string receiveRequest(int socket) {
  std::string request;
  RequestEnd end;
  std::array<char, 65536> block{};
  while (true) {
    const ssize_t count = ::recv(socket, block.data(), block.size(), 0);
    if (count <= 0) return request;
    const std::string_view piece(block.data(), static_cast<std::size_t>(count));
    request += piece;
    if (end.reachedBy(piece)) return request;
  }
}

/// From now on, closing the connection resets it.
inline void resetWhenClosed(int socket) {
  const linger atOnce{.l_onoff = 1, .l_linger = 0};
  ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}
