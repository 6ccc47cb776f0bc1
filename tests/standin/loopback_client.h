#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// A connection to a port of 127.0.0.1, as the server would open it. Nothing waits longer than ten
/// seconds.
class LoopbackClient {
 public:
  /// Connects. Throws std::system_error if that fails.
  explicit LoopbackClient(std::uint16_t port);
  ~LoopbackClient();
  LoopbackClient(const LoopbackClient&) = delete;
  LoopbackClient& operator=(const LoopbackClient&) = delete;

  /// Sends all bytes. Throws std::system_error if that fails.
  void send(std::string_view bytes);
  /// Receives a JSON object or array. Returns what has been received so far if the other side
  /// closes, or if nothing arrives for ten seconds.
  std::string receiveReply();
  /// True if the other side closes within this time without sending anything.
  bool isClosedWithin(int seconds);

 private:
  int socket_;
};
