#include "tests/support/app_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <vector>

#include "tests/support/socket_io.h"

AppConnection::AppConnection(int socket, AppState& state, std::size_t index)
    : socket_(socket), state_(state), index_(index) {}

AppConnection::~AppConnection() {
  hangUp();
}

// False when nothing more will come: the server has closed, or the test is over.
bool AppConnection::receive(std::size_t atMost) {
  if (socket_ < 0) return false;
  pollfd wanted{.fd = socket_, .events = POLLIN, .revents = 0};
  while (::poll(&wanted, 1, 50) <= 0) {
    const std::lock_guard lock(state_.mutex);
    if (state_.ending) return false;
  }
  std::vector<char> block(atMost);
  const ssize_t got = ::recv(socket_, block.data(), block.size(), 0);
  const std::lock_guard lock(state_.mutex);
  ConnectionRecord& record = state_.records[index_];
  if (got > 0) {
    record.received.append(block.data(), static_cast<std::size_t>(got));
  } else if (!record.closedByServer) {
    record.closedByServer = std::chrono::steady_clock::now();
  }
  state_.changed.notify_all();
  return got > 0;
}

void AppConnection::readRequest() {
  readRequestSlowly(std::size_t{1} << 18, Duration(0));
}

void AppConnection::readRequestSlowly(std::size_t piece, Duration pauseTime) {
  while (receive(piece)) {
    {
      const std::lock_guard lock(state_.mutex);
      const std::string_view received = state_.records[index_].received;
      const std::string_view fresh = received.substr(scanned_);
      scanned_ = received.size();
      if (end_.reachedBy(fresh)) return;
    }
    pause(pauseTime);
  }
}

void AppConnection::readAtLeast(std::size_t bytes) {
  while (receive(4096)) {
    const std::lock_guard lock(state_.mutex);
    if (state_.records[index_].received.size() >= bytes) return;
  }
}

void AppConnection::write(std::string_view bytes) {
  if (socket_ >= 0) sendAll(socket_, bytes);
}

void AppConnection::pause(Duration time) {
  std::unique_lock lock(state_.mutex);
  state_.changed.wait_for(lock, time, [this] { return state_.ending; });
}

void AppConnection::waitForRelease() {
  std::unique_lock lock(state_.mutex);
  state_.changed.wait(lock, [this] { return state_.ending || state_.released > 0; });
  if (state_.released > 0) --state_.released;
}

void AppConnection::halfClose() {
  if (socket_ >= 0) ::shutdown(socket_, SHUT_WR);
}

void AppConnection::hangUp() {
  if (socket_ >= 0) ::close(socket_);
  socket_ = -1;
}

void AppConnection::reset() {
  if (socket_ >= 0) resetWhenClosed(socket_);
  hangUp();
}

void AppConnection::waitForServerToClose() {
  while (receive(std::size_t{1} << 16)) {
  }
}
