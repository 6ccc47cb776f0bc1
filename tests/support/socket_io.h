#pragma once

#include <sys/socket.h>

#include <cstddef>
#include <string_view>

/// Sends everything, unless the other end has gone.
inline void sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), 0);
    if (sent <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

/// From now on, closing the connection resets it.
inline void resetWhenClosed(int socket) {
  const linger atOnce{.l_onoff = 1, .l_linger = 0};
  ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}
