#include "bridge/loopback_socket.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>

#ifdef __APPLE__
#include <fcntl.h>
#endif

#include "common/one_call.h"

namespace bridge {
namespace {

#ifdef __APPLE__

constexpr int sendFlags = 0;

int openSocket() {
  const int descriptor = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  const int on = 1;
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  fcntl(descriptor, F_SETFL, O_NONBLOCK);
  setsockopt(descriptor, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
  return descriptor;
}

#else

constexpr int sendFlags = MSG_NOSIGNAL;

int openSocket() {
  return socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP);
}

#endif

/// The timeout for poll() in milliseconds, rounded up so that it does not end before the deadline.
int pollTimeout(UptimeClock::time_point deadline) {
  using std::chrono::milliseconds;
  if (deadline == UptimeClock::time_point::max()) return -1;
  const auto left = std::chrono::ceil<milliseconds>(deadline - UptimeClock::now()).count();
  return static_cast<int>(std::clamp<milliseconds::rep>(left, 0, std::numeric_limits<int>::max()));
}

}  // namespace

bool LoopbackSocket::open() {
  close();
  descriptor_ = openSocket();
  return descriptor_ >= 0;
}

int LoopbackSocket::connect(std::uint16_t port, UptimeClock::time_point deadline) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const auto* const anyAddress = reinterpret_cast<const sockaddr*>(&address);
  if (::connect(descriptor_, anyAddress, sizeof address) != 0 && errno != EINPROGRESS) return errno;
  if (!wait(Until::writable, deadline)) return ETIMEDOUT;
  if (const int failure = error(); failure != 0) return failure;
  if (!isSelfConnected(port)) return 0;
  reset();
  return ECONNREFUSED;
}

/// Why the attempt to connect failed; 0 if it did not.
int LoopbackSocket::error() const {
  int error = 0;
  socklen_t size = sizeof error;
  return getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

/// If no program listens on the port, the system can choose that port as the local one. TCP then
/// connects the socket to itself. macOS chooses among 16,384 ports, so that it happens in one of
/// 16,384 attempts, and a call can make a thousand attempts.
bool LoopbackSocket::isSelfConnected(std::uint16_t port) const {
  sockaddr_in local{};
  socklen_t size = sizeof local;
  return getsockname(descriptor_, reinterpret_cast<sockaddr*>(&local), &size) == 0 &&
         local.sin_port == htons(port);
}

ssize_t LoopbackSocket::send(std::string_view bytes) const {
  const std::string_view piece = common::forOneCall(bytes);
  return ::send(descriptor_, piece.data(), piece.size(), sendFlags);
}

ssize_t LoopbackSocket::receive(char* to, std::size_t size) const {
  return recv(descriptor_, to, size, 0);
}

bool LoopbackSocket::wait(Until until, UptimeClock::time_point deadline) const {
  const short events = until == Until::readable ? POLLIN : POLLOUT;
  pollfd socket{.fd = descriptor_, .events = events, .revents = 0};
  while (poll(&socket, 1, pollTimeout(deadline)) <= 0) {  // 0, or interrupted by a signal
    if (UptimeClock::now() >= deadline) return false;
  }
  return true;
}

void LoopbackSocket::close() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

/// A self-connect closed normally leaves the application's port in TIME_WAIT. SO_LINGER 0 resets it
/// and frees the port.
void LoopbackSocket::reset() {
  const linger atOnce{.l_onoff = 1, .l_linger = 0};
  setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  close();
}

}  // namespace bridge
