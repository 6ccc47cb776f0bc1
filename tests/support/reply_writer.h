#pragma once

#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>

/// Writes a reply in pieces and measures how late they are. On a busy machine a piece can be so
/// late that the server must treat the silence before it as the end of the reply.
class ReplyWriter {
 public:
  using Clock = std::chrono::steady_clock;

  /// A gap from which on the server may not have waited. It waits 50 ms, longer in a big reply.
  static constexpr Clock::duration lateGap = std::chrono::milliseconds(40);

  /// Sends everything. False if the other end has gone.
  bool write(int socket, std::string_view bytes) {
    constexpr std::size_t piece = 65536;
    while (!bytes.empty()) {
      const auto start = Clock::now();
      const ssize_t sent = ::send(socket, bytes.data(), std::min(piece, bytes.size()), 0);
      if (sent <= 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(sent));
      longestGap_ = std::max(longestGap_, Clock::now() - lastStart_.value_or(start));
      lastStart_ = start;
    }
    return true;
  }

  /// The longest time from before a piece was sent until the next one was sent.
  [[nodiscard]] Clock::duration longestGap() const { return longestGap_; }

 private:
  std::optional<Clock::time_point> lastStart_;
  Clock::duration longestGap_{};
};
