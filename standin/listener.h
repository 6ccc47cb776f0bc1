#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <future>
#include <list>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/loopback_listener.h"

namespace standin {

/// Returns the reply to a request, both as JSON text. Called on several threads at once; must not
/// throw.
using Answer = std::function<std::string(std::string_view request)>;

/// Serves a free port of 127.0.0.1, each connection on a thread of its own: it reads one request,
/// sends the reply, and waits for the client to close. Clients that take too long are disconnected.
class Listener {
 public:
  /// Throws std::system_error if it can't listen.
  explicit Listener(Answer answer);
  /// Closes every connection. Waits for answers that are being prepared.
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  std::uint16_t port() const { return listener_.port(); }

 private:
  void acceptConnections();
  void serve(int connection) const;
  std::string receive(int connection, std::chrono::seconds limit) const;
  bool readable(int socket, std::chrono::milliseconds limit) const;

  Answer answer_;
  LoopbackListener listener_;
  std::array<int, 2> stop_{};  ///< a pipe; its writing end is closed to end every wait
  std::list<std::future<void>> connections_;
  std::thread accepting_;
};

}  // namespace standin
