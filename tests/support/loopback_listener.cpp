#include "tests/support/loopback_listener.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

LoopbackListener::LoopbackListener(int queue) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
  if (::bind(socket_, anyAddress, size) != 0 || ::listen(socket_, queue) != 0 ||
      ::getsockname(socket_, anyAddress, &size) != 0) {
    const std::error_code reason(errno, std::generic_category());
    ::close(socket_);
    throw std::system_error(reason, "cannot listen");
  }
  port_ = ntohs(address.sin_port);
}

LoopbackListener::~LoopbackListener() {
  ::close(socket_);
}

int LoopbackListener::accept() const {
  return ::accept(socket_, nullptr, nullptr);
}
