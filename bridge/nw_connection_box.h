#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>

#include "bridge/reply.h"
#include "bridge/uptime_clock.h"
#include "json/text.h"

namespace bridge {

/// One exchange with the desktop application on a connection of its own: connect to the IPv4
/// loopback address, send one request, receive one reply, close.
///
/// Always owned by a shared_ptr. Once connected, the exchange keeps the box alive until it is
/// over, whether or not anybody else holds it; until then only its owner does, so that a
/// request which was never sent is forgotten with its owner. Everything, the completion
/// included, runs on the thread that runs the context, and so must every use of the box.
class NWConnectionBox : public std::enable_shared_from_this<NWConnectionBox> {
 public:
  /// Gets the reply, or none if the exchange ended without one.
  using Completion = std::function<void(std::optional<Reply>)>;

  /// `port` is on the loopback address; the context must outlive the box.
  NWConnectionBox(asio::io_context& context, std::uint16_t port);

  /// Starts the exchange and returns at once; to be called once. The completion is called at
  /// most once: not while the connection is refused, which is tried again until the box is
  /// let go, nor while the application says nothing. It must not block.
  void send(json::Text request, Completion completion);

  /// For a caller whose time is up: delivers the bytes that have come, if any, without waiting
  /// for the rest of a reply. If none have, the exchange goes on.
  void deliverWhatCame();

 private:
  using Error = std::error_code;

  void connect();
  void connected(Error error);
  void waitAndConnect();
  [[nodiscard]] bool isConnectedToItself() const;
  void sendRequest();
  void sent(Error error, std::size_t count);
  bool receiveAtOnce();
  void receive();
  void received(Error error, std::size_t count);
  void waitForMore();
  void fellSilent();
  [[nodiscard]] bool moreHasCome() const;
  void deliver();
  void finish(std::optional<Reply> reply);

  asio::ip::tcp::endpoint endpoint_;
  asio::ip::tcp::socket connection_;
  asio::basic_waitable_timer<UptimeClock> timer_;
  json::Text request_;
  std::size_t sentBytes_ = 0;
  Reply reply_;
  Completion completion_;
  bool finished_ = false;
};

}  // namespace bridge
