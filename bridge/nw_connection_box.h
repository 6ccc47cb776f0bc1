#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "bridge/loopback_socket.h"
#include "bridge/reply.h"
#include "bridge/uptime_clock.h"
#include "common/bytes.h"

namespace bridge {

/// One exchange with the desktop application on a connection of its own: connect to the IPv4
/// loopback address, send one request, receive one reply, close. For one thread at a time.
class NWConnectionBox {
 public:
  enum class State : std::uint8_t {
    connecting,  ///< a refused connection is tried again
    sending,     ///< connected; a part of the request may have been sent
    receiving,   ///< the whole request has been sent
    finished     ///< closed, with or without a reply
  };

  NWConnectionBox(std::uint16_t port, common::Bytes request)
      : port_(port), request_(std::move(request)) {}

  /// Continues the exchange until it has finished. False if the deadline comes first; another call
  /// then continues it.
  bool send(UptimeClock::time_point deadline);

  [[nodiscard]] State state() const { return state_; }

  /// Everything received so far; none if there is nothing. Call it once.
  std::optional<Reply> takeReply();

 private:
  bool connect(UptimeClock::time_point deadline);
  bool sendRequest(UptimeClock::time_point deadline);
  bool receiveReply(UptimeClock::time_point deadline);
  enum class Received : std::uint8_t { some, nothing, end };
  Received receiveSome();
  bool finish();

  std::uint16_t port_;
  LoopbackSocket socket_;
  State state_ = State::connecting;
  common::Bytes request_;
  std::size_t sentBytes_ = 0;
  Reply reply_;
  UptimeClock::time_point silenceEnds_;  // once some of the reply has been received
};

}  // namespace bridge
