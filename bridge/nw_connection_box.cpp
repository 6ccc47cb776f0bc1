#include "bridge/nw_connection_box.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include <asio/buffer.hpp>
#include <asio/error.hpp>

namespace bridge {
namespace {

using namespace std::chrono_literals;

/// Between two attempts to connect to an application that does not listen (yet).
constexpr auto retryPause = 20ms;

/// Most replies are small; one that fills this much is a big one.
constexpr std::size_t smallReply = 16384;

/// The application writes its reply at once, but the system may hand it over in pieces: this
/// long a silence after a piece means that there is no more of it. The writer of a big reply is
/// stopped again and again in the middle, and on a busy machine has to wait for its turn.
constexpr auto silenceAfterSmallReply = 50ms;
constexpr auto silenceAfterBigReply = 250ms;

/// A connection that met itself and is closed in the ordinary way would keep its port, which is
/// the application's, for a minute. One that is broken off leaves nothing behind.
void breakOffWhenClosed(int connection, bool on) {
  const linger atOnce{.l_onoff = on ? 1 : 0, .l_linger = 0};
  setsockopt(connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

}  // namespace

NWConnectionBox::NWConnectionBox(asio::io_context& context, std::uint16_t port)
    : endpoint_(asio::ip::address_v4::loopback(), port), connection_(context), timer_(context) {}

void NWConnectionBox::send(json::Text request, Completion completion) {
  request_ = std::move(request);
  completion_ = std::move(completion);
  connect();
}

void NWConnectionBox::connect() {
  Error error;
  connection_.open(endpoint_.protocol(), error);
  if (error) return finish(std::nullopt);
  fcntl(connection_.native_handle(), F_SETFD, FD_CLOEXEC);
  breakOffWhenClosed(connection_.native_handle(), true);
  connection_.async_connect(endpoint_, [waiting = weak_from_this()](Error outcome) {
    if (const auto self = waiting.lock()) self->connected(outcome);
  });
}

void NWConnectionBox::connected(Error error) {
  // Accepted and thrown out at once: that is the end of an exchange, not an application to
  // wait for.
  if (error == asio::error::connection_reset) return finish(std::nullopt);
  if (error || isConnectedToItself()) return waitAndConnect();
  breakOffWhenClosed(connection_.native_handle(), false);
  sendRequest();
}

void NWConnectionBox::waitAndConnect() {
  Error ignored;
  connection_.close(ignored);
  timer_.expires_after(retryPause);
  timer_.async_wait([waiting = weak_from_this()](Error error) {
    if (const auto self = waiting.lock(); self && !error) self->connect();
  });
}

/// Where nobody listens on a port out of the range that the system gives to outgoing
/// connections, an attempt can be given that same port, and then it meets itself.
bool NWConnectionBox::isConnectedToItself() const {
  Error error;
  return connection_.local_endpoint(error) == endpoint_;
}

void NWConnectionBox::sendRequest() {
  const std::string_view rest = request_.view().substr(sentBytes_);
  connection_.async_send(
      asio::buffer(rest),
      [self = shared_from_this()](Error error, std::size_t count) { self->sent(error, count); });
}

void NWConnectionBox::sent(Error error, std::size_t count) {
  if (error) return finish(std::nullopt);
  sentBytes_ += count;
  if (sentBytes_ < request_.size()) return sendRequest();
  if (!receiveAtOnce()) receive();
}

/// To fall asleep and be woken takes longer than a quick application takes to answer; asking
/// this often takes some fifty microseconds in all.
bool NWConnectionBox::receiveAtOnce() {
  constexpr int attempts = 128;
  Error error;
  connection_.non_blocking(true, error);
  for (int attempt = 0; attempt < attempts; ++attempt) {
    const auto room = asio::buffer(reply_.room(smallReply), smallReply);
    const std::size_t count = connection_.receive(room, 0, error);
    if (error == asio::error::would_block) continue;
    received(error, count);
    return true;
  }
  return false;
}

void NWConnectionBox::receive() {
  const std::size_t room = reply_.isEmpty() ? smallReply : reply_.left();
  connection_.async_receive(asio::buffer(reply_.room(room), room),
                            [self = shared_from_this()](Error error, std::size_t count) {
                              self->received(error, count);
                            });
}

void NWConnectionBox::received(Error error, std::size_t count) {
  if (finished_) return;
  reply_.received(count);
  const bool isAll = reply_.isWhole() && !moreHasCome();
  if (error || isAll || reply_.left() == 0) return deliver();
  waitForMore();
  receive();
}

void NWConnectionBox::waitForMore() {
  timer_.expires_after(reply_.size() < smallReply ? silenceAfterSmallReply : silenceAfterBigReply);
  timer_.async_wait([self = shared_from_this()](Error error) {
    if (!error) self->fellSilent();
  });
}

/// Where this process did not run for a while, the time may be up although more has come in: it
/// was received just now, and the time runs anew, or it waits to be.
void NWConnectionBox::fellSilent() {
  if (timer_.expiry() > UptimeClock::now()) return;
  if (moreHasCome()) return waitForMore();
  deliver();
}

bool NWConnectionBox::moreHasCome() const {
  Error error;
  return connection_.available(error) > 0;
}

void NWConnectionBox::deliverWhatCame() {
  if (!reply_.isEmpty()) deliver();
}

void NWConnectionBox::deliver() {
  finish(reply_.isEmpty() ? std::nullopt : std::optional(std::move(reply_)));
}

void NWConnectionBox::finish(std::optional<Reply> reply) {
  if (finished_) return;
  finished_ = true;
  completion_(std::move(reply));
  Error ignored;
  connection_.close(ignored);
  timer_.cancel();
}

}  // namespace bridge
