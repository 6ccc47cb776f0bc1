#include "bridge/exchange.h"

#include <cstdlib>
#include <limits>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "bridge/nw_connection_box.h"
#include "bridge/uptime_clock.h"

namespace bridge {
namespace {

std::uint16_t tcpPort(std::int64_t port) {
  if (port < 0 || port > std::numeric_limits<std::uint16_t>::max()) std::abort();
  return static_cast<std::uint16_t>(port);
}

/// Continues an abandoned exchange in a thread. The connection closes when a late reply or its end
/// arrives, or at once if no thread can be started.
void finishInBackground(std::unique_ptr<NWConnectionBox> box) {
  try {
    std::thread([box = std::move(box)] { box->send(UptimeClock::time_point::max()); }).detach();
  } catch (const std::system_error&) {
    return;  // destroying the box has closed the connection
  }
}

}  // namespace

Outcome exchange(std::int64_t port, common::Bytes request, std::chrono::seconds limit) {
  auto box = std::make_unique<NWConnectionBox>(tcpPort(port), std::move(request));
  const bool finished = box->send(UptimeClock::now() + limit);
  Outcome outcome{.ended = finished, .reply = box->takeReply()};
  if (outcome.reply) outcome.ended = true;
  // A request that never connected is dropped: it must not be sent later.
  if (!outcome.ended && box->state() != NWConnectionBox::State::connecting) {
    finishInBackground(std::move(box));
  }
  return outcome;
}

}  // namespace bridge
