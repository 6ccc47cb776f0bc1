#include "bridge/exchange.h"

#include <cstdlib>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

#include "bridge/exchange_loop.h"
#include "bridge/nw_connection_box.h"
#include "bridge/uptime_clock.h"

namespace bridge {
namespace {

std::uint16_t tcpPort(std::int64_t port) {
  if (port < 0 || port > std::numeric_limits<std::uint16_t>::max()) std::abort();
  return static_cast<std::uint16_t>(port);
}

/// For a caller whose time is up. A request that nobody has taken is forgotten; of a reply all
/// that has come is delivered, also what came while this process did not run.
void giveUp(ExchangeLoop::Turn& turn, std::shared_ptr<NWConnectionBox> box) {
  const std::weak_ptr<NWConnectionBox> connected = box;
  box.reset();
  turn.runReady();
  if (const auto open = connected.lock()) open->deliverWhatCame();
}

Outcome exchangeOn(ExchangeLoop& loop, std::uint16_t port, json::Text request,
                   std::chrono::seconds limit) {
  ExchangeLoop::Turn turn(loop);
  // Held by the completion too: a late one writes where nobody reads any more.
  const auto outcome = std::make_shared<Outcome>();
  auto box = std::make_shared<NWConnectionBox>(turn.context(), port);
  const auto deadline = UptimeClock::now() + limit;
  box->send(std::move(request), [outcome](std::optional<Reply> reply) {
    outcome->reply = std::move(reply);
    outcome->ended = true;
  });
  turn.runUntil(deadline, outcome->ended);
  if (!outcome->ended) giveUp(turn, std::move(box));
  return std::move(*outcome);
}

}  // namespace

Outcome exchange(std::int64_t port, json::Text request, std::chrono::seconds limit) {
  const std::uint16_t checkedPort = tcpPort(port);
  try {
    return exchangeOn(ExchangeLoop::shared(), checkedPort, std::move(request), limit);
  } catch (const std::system_error&) {
    return {.ended = true, .reply = std::nullopt};  // no descriptors left for the loop itself
  }
}

}  // namespace bridge
