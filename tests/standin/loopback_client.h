#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// A plain socket to a port of 127.0.0.1, as the server would open it. Nothing it does waits
/// longer than ten seconds.
class LoopbackClient {
 public:
  /// Connects; throws std::system_error when it can't.
  explicit LoopbackClient(std::uint16_t port);
  ~LoopbackClient();
  LoopbackClient(const LoopbackClient&) = delete;
  LoopbackClient& operator=(const LoopbackClient&) = delete;

  /// Sends all bytes; throws when the other side takes no more.
  void send(std::string_view bytes);
  /// Receives until what came is a complete JSON text, and returns it; what came so far when
  /// the other side closes or ten seconds pass without a byte.
  std::string receiveReply();
  /// True if the other side has closed, or closes within that many seconds, without a byte.
  bool isClosedWithin(int seconds);

 private:
  int socket_;
};
