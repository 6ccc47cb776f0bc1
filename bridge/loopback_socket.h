#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "bridge/uptime_clock.h"

namespace bridge {

/// A non-blocking TCP socket that connects to the IPv4 loopback address. Owns its descriptor, which
/// children do not inherit. A connection that the peer has closed raises no signal.
class LoopbackSocket {
 public:
  LoopbackSocket() = default;
  LoopbackSocket(const LoopbackSocket&) = delete;
  LoopbackSocket& operator=(const LoopbackSocket&) = delete;
  ~LoopbackSocket() { close(); }

  /// Opens a new socket and closes the previous one. False if the system has none.
  bool open();

  /// Connects to 127.0.0.1:`port`. Returns 0 or an errno value; ETIMEDOUT at the deadline. A socket
  /// that connects to itself counts as ECONNREFUSED.
  int connect(std::uint16_t port, UptimeClock::time_point deadline);

  /// Sends what can be sent without waiting. Result and errno are those of send().
  [[nodiscard]] ssize_t send(std::string_view bytes) const;

  /// Receives what has arrived. Result and errno are those of recv().
  ssize_t receive(char* to, std::size_t size) const;

  enum class Until : std::uint8_t { readable, writable };

  /// Waits until the socket is ready or has failed. False if the deadline comes first.
  [[nodiscard]] bool wait(Until until, UptimeClock::time_point deadline) const;

  void close();

 private:
  [[nodiscard]] int error() const;
  [[nodiscard]] bool isSelfConnected(std::uint16_t port) const;
  void reset();

  int descriptor_ = -1;
};

}  // namespace bridge
