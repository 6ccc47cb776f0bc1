#include "tests/support/app_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <vector>

#include "tests/support/socket_io.h"

AppConnection::AppConnection(int socket, AppState& state, std::size_t index)
    : socket_(socket), state_(state), index_(index) {}

AppConnection::~AppConnection() {
  close();
}

// False at the end of the stream and when the test is over.
bool AppConnection::receive(std::size_t atMost) {
  if (socket_ < 0) return false;
  pollfd wanted{.fd = socket_, .events = POLLIN, .revents = 0};
  while (::poll(&wanted, 1, 50) <= 0) {
    const std::lock_guard lock(state_.mutex);
    if (state_.ending) return false;
  }
  std::vector<char> block(atMost);
  const ssize_t count = ::recv(socket_, block.data(), block.size(), 0);
  const std::lock_guard lock(state_.mutex);
  ConnectionRecord& record = state_.records[index_];
  if (count > 0) {
    record.received.append(block.data(), static_cast<std::size_t>(count));
  } else if (!record.closedByServer) {
    record.closedByServer = ConnectionRecord::Clock::now();
  }
  state_.changed.notify_all();
  return count > 0;
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

bool AppConnection::write(std::string_view bytes) {
  if (socket_ < 0) return false;
  const bool complete = writer_.write(socket_, bytes);
  const std::lock_guard lock(state_.mutex);
  state_.records[index_].longestGap = writer_.longestGap();
  return complete && !state_.ending;
}

void AppConnection::writeUntilClosed(std::string_view bytes, Duration pauseTime) {
  while (write(bytes)) pause(pauseTime);
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

void AppConnection::close() {
  if (socket_ >= 0) ::close(socket_);
  socket_ = -1;
}

void AppConnection::reset() {
  if (socket_ >= 0) resetWhenClosed(socket_);
  close();
}

void AppConnection::waitForServerToClose() {
  while (receive(std::size_t{1} << 16)) {
  }
}
