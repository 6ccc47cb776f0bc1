#include "fuzz/pieced_input.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>

#include "fuzz/pieces.h"
#include "fuzz/require.h"

// Datagram sockets: read() gets one message, and 0 bytes for an empty message, as at the end of
// input. A pipe would join the pieces, or need a thread and with it timing.

PiecedInput::PiecedInput(std::string_view bytes, std::uint8_t seed) {
  constexpr int room = 65536;  // the default is 2 KiB on macOS
  require(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends_.data()) == 0, "sockets can be created");
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
  require(sent == static_cast<ssize_t>(piece.size()), "a piece is sent whole");
}
