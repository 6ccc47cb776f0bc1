#include "bridge/nw_connection_box.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string_view>
#include <thread>

namespace bridge {
namespace {

using namespace std::chrono_literals;

/// The pause between two attempts to connect to an application that does not listen (yet).
constexpr auto retryPause = 20ms;

/// Most replies are smaller than this. The first piece of a bigger reply is not: loopback segments
/// carry 16,332 bytes on macOS and more on Linux.
constexpr std::size_t smallReply = 8192;

/// The application writes its reply at once, but it may arrive in pieces. A silence of this length
/// ends the reply. The writer of a big reply is blocked again and again, and on a busy machine it
/// has to wait for its turn.
constexpr auto silenceAfterSmallReply = 50ms;
constexpr auto silenceAfterBigReply = 250ms;

bool isTemporary(int error) {
  return error == EAGAIN || error == EINTR;
}

}  // namespace

bool NWConnectionBox::send(UptimeClock::time_point deadline) {
  return (state_ != State::connecting || connect(deadline)) &&
         (state_ != State::sending || sendRequest(deadline)) &&
         (state_ != State::receiving || receiveReply(deadline));
}

bool NWConnectionBox::connect(UptimeClock::time_point deadline) {
  while (UptimeClock::now() < deadline) {
    if (!socket_.open()) return finish();
    const int error = socket_.connect(port_, deadline);
    if (error == 0) {
      state_ = State::sending;
      return true;
    }
    // Not refused: the application accepted the connection and then reset it.
    if (error == ECONNRESET) return finish();
    socket_.close();
    // sleep_until() with this clock waits by the wall clock in some C++ libraries.
    const UptimeClock::duration left = deadline - UptimeClock::now();
    std::this_thread::sleep_for(std::min<UptimeClock::duration>(left, retryPause));
  }
  return false;
}

bool NWConnectionBox::sendRequest(UptimeClock::time_point deadline) {
  while (sentBytes_ < request_.size()) {
    const ssize_t count = socket_.send(request_.view().substr(sentBytes_));
    if (count >= 0) {
      sentBytes_ += static_cast<std::size_t>(count);
    } else if (!isTemporary(errno)) {
      return finish();
    } else if (UptimeClock::now() >= deadline) {
      return false;
    } else {
      static_cast<void>(socket_.wait(LoopbackSocket::Until::writable, deadline));
    }
  }
  state_ = State::receiving;
  return true;
}

bool NWConnectionBox::receiveReply(UptimeClock::time_point deadline) {
  // Blocking and waking cost more than a fast reply; 128 polls take about 50 us.
  int polls = 128;
  while (true) {
    // Taken before receiving: if the process was suspended, the time can be up although data has
    // arrived. That data is received first.
    const auto now = UptimeClock::now();
    const Received received = receiveSome();
    if (received == Received::end) return finish();
    if (received == Received::some) continue;
    if (reply_.isWhole()) return finish();
    if (!reply_.isEmpty() && now >= silenceEnds_) return finish();
    if (now >= deadline) return false;
    if (reply_.isEmpty() && polls-- > 0) continue;
    const auto until = reply_.isEmpty() ? deadline : std::min(deadline, silenceEnds_);
    static_cast<void>(socket_.wait(LoopbackSocket::Until::readable, until));
  }
}

NWConnectionBox::Received NWConnectionBox::receiveSome() {
  const std::size_t room = reply_.isEmpty() ? smallReply : reply_.left();
  const ssize_t count = socket_.receive(reply_.room(room), room);
  if (count < 0 && isTemporary(errno)) return Received::nothing;
  if (count <= 0) return Received::end;
  reply_.received(static_cast<std::size_t>(count));
  const bool receivedAll = static_cast<std::size_t>(count) < room;
  if (reply_.left() == 0 || (reply_.isWhole() && receivedAll)) return Received::end;
  silenceEnds_ = UptimeClock::now() +
                 (reply_.size() < smallReply ? silenceAfterSmallReply : silenceAfterBigReply);
  return Received::some;
}

bool NWConnectionBox::finish() {
  socket_.close();
  state_ = State::finished;
  return true;
}

std::optional<Reply> NWConnectionBox::takeReply() {
  if (reply_.isEmpty()) return std::nullopt;
  return std::move(reply_);
}

}  // namespace bridge
