#include "benchmarks/driver/application.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tests/support/request_end.h"
#include "tests/support/socket_io.h"

Application::~Application() {
  stopping_ = true;
  thread_.join();
}

void Application::expect(std::string_view reply, bool lengthsAsBefore) {
  const std::lock_guard lock(mutex_);
  reply_ = reply;
  lengthsAsBefore_ = lengthsAsBefore;
  count_ = 0;
}

std::vector<std::string_view> Application::requests() const {
  const std::lock_guard lock(mutex_);
  return {requests_.begin(), requests_.begin() + static_cast<std::ptrdiff_t>(count_)};
}

// The server closes its connections first, as it does with the real application: a connection is
// closed here when the next one arrives.
void Application::serve() {
  int previous = -1;
  while (!stopping_) {
    pollfd waiting{.fd = listener_.socket(), .events = POLLIN, .revents = 0};
    if (::poll(&waiting, 1, 100) <= 0) continue;
    const int connection = listener_.accept();
    const std::lock_guard lock(mutex_);
    if (requests_.size() == count_) requests_.emplace_back();
    receive(connection, requests_[count_]);
    sendAll(connection, count_++ == 0 ? R"({"result":{"drives":[]},"ok":true})" : reply_);
    if (previous >= 0) ::close(previous);
    previous = connection;
  }
}

void Application::receive(int connection, std::string& request) const {
  RequestEnd end;
  std::size_t size = 0;
  for (bool isWhole = false; !isWhole;) {
    if (size == request.size()) request.resize(2 * size + 4096);
    char* const fresh = request.data() + size;
    const ssize_t count = ::recv(connection, fresh, request.size() - size, 0);
    if (count <= 0) break;
    const auto received = static_cast<std::size_t>(count);
    size += received;
    isWhole = lengthsAsBefore_ ? size == request.size() : end.reachedBy({fresh, received});
  }
  request.resize(size);
}
