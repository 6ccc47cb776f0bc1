#include "fuzz/pieced_input.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>

#include "fuzz/pieces.h"
#include "fuzz/require.h"

// A pair of sockets that keep messages apart: read() takes one message, and takes an empty one for
// the end. A pipe would run the pieces together or take a thread, and with it chance.

PiecedInput::PiecedInput(std::string_view bytes, std::uint8_t seed) {
  constexpr int room = 65536;  // on macOS it is 2 KiB by itself
  require(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends_.data()) == 0, "there are sockets");
  setsockopt(ends_[1], SOL_SOCKET, SO_SNDBUF, &room, sizeof(room));
  setsockopt(ends_[0], SOL_SOCKET, SO_RCVBUF, &room, sizeof(room));
  std::size_t begin = 0;
  for (const std::size_t end : pieceEnds(bytes.size(), seed)) {
    send(bytes.substr(begin, end - begin));
    begin = end;
  }
  send("");
  send("");
}

PiecedInput::~PiecedInput() {
  for (const int end : ends_) close(end);
}

void PiecedInput::send(std::string_view piece) const {
  const ssize_t sent = ::send(ends_[1], piece.data(), piece.size(), MSG_DONTWAIT);
  require(sent == static_cast<ssize_t>(piece.size()), "a piece goes in whole");
}
