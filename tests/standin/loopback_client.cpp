#include "tests/standin/loopback_client.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "tests/support/request_end.h"

namespace {

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

LoopbackClient::LoopbackClient(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
  if (socket_ < 0) fail("socket");
  const timeval limit{.tv_sec = 10, .tv_usec = 0};
  ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  ::setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    ::close(socket_);
    fail("connect");
  }
}

LoopbackClient::~LoopbackClient() {
  ::close(socket_);
}

void LoopbackClient::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), 0);
    if (sent < 0) fail("send");
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

std::string LoopbackClient::receiveReply() {
  std::string reply;
  RequestEnd end;  // finds the end of a reply in the same way
  while (true) {
    std::array<char, 65536> block{};
    const ssize_t bytes = ::recv(socket_, block.data(), block.size(), 0);
    if (bytes <= 0) return reply;
    const std::string_view piece(block.data(), static_cast<std::size_t>(bytes));
    reply += piece;
    if (end.reachedBy(piece)) return reply;
  }
}

bool LoopbackClient::isClosedWithin(int seconds) {
  pollfd waiting{.fd = socket_, .events = POLLIN, .revents = 0};
  char byte = 0;
  return ::poll(&waiting, 1, seconds * 1000) > 0 && ::recv(socket_, &byte, 1, 0) <= 0;
}
