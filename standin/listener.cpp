#include "standin/listener.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

#include "tests/support/request_end.h"
#include "tests/support/socket_io.h"

namespace standin {

using namespace std::chrono_literals;

Listener::Listener(Answer answer) : answer_(std::move(answer)), listener_(128) {
  std::signal(SIGPIPE, SIG_IGN);  // a client that closes early must not end the process
  if (::pipe(stop_.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  accepting_ = std::thread([this] { acceptConnections(); });
}

Listener::~Listener() {
  ::close(stop_[1]);
  accepting_.join();
  connections_.clear();  // waits for each
  ::close(stop_[0]);
}

void Listener::acceptConnections() {
  while (readable(listener_.socket(), -1ms)) {
    std::erase_if(connections_, [](const std::future<void>& connection) {
      return connection.wait_for(0s) == std::future_status::ready;
    });
    const int connection = listener_.accept();
    if (connection >= 0) {
      connections_.push_back(std::async(std::launch::async, [=, this] { serve(connection); }));
    } else {
      std::this_thread::sleep_for(50ms);  // perhaps out of descriptors, until others close
    }
  }
}

void Listener::serve(int connection) const {
  const timeval limit{.tv_sec = 30, .tv_usec = 0};
  ::setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  std::string request;
  std::string piece;
  RequestEnd end;
  do {
    piece = receive(connection, 30s);
    request += piece;
  } while (!piece.empty() && !end.reachedBy(piece));
  if (!piece.empty()) sendAll(connection, answer_(request));
  // Closing first could discard a reply that the server has not read yet.
  while (!piece.empty()) piece = receive(connection, 5s);
  ::close(connection);
}

// The next bytes. Empty if there are none within the limit.
std::string Listener::receive(int connection, std::chrono::seconds limit) const {
  std::string bytes(65536, '\0');
  if (!readable(connection, limit)) return {};
  const ssize_t received = ::recv(connection, bytes.data(), bytes.size(), 0);
  bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(received, 0)));
  return bytes;
}

// Waits until the socket can be read. False after the limit, or if this object is being destroyed.
bool Listener::readable(int socket, std::chrono::milliseconds limit) const {
  std::array<pollfd, 2> waiting{{{.fd = socket, .events = POLLIN, .revents = 0},
                                 {.fd = stop_[0], .events = POLLIN, .revents = 0}}};
  const int ready = ::poll(waiting.data(), waiting.size(), static_cast<int>(limit.count()));
  return ready > 0 && waiting[1].revents == 0;
}

}  // namespace standin
