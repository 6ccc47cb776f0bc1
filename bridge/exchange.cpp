#include "bridge/exchange.h"

#include <cstdlib>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

#include "bridge/exchange_loop.h"
#include "bridge/nw_connection_box.h"

namespace bridge {
namespace {

std::uint16_t tcpPort(std::int64_t port) {
  if (port < 0 || port > std::numeric_limits<std::uint16_t>::max()) std::abort();
  return static_cast<std::uint16_t>(port);
}

Outcome exchangeOn(ExchangeLoop& loop, std::uint16_t port, json::Text request,
                   std::chrono::seconds limit) {
  ExchangeLoop::Turn turn(loop);
  // Held by the completion too: a late one writes where nobody reads any more.
  const auto outcome = std::make_shared<Outcome>();
  const auto box = std::make_shared<NWConnectionBox>(turn.context(), port);
  const auto deadline = std::chrono::steady_clock::now() + limit;
  box->send(std::move(request), [outcome](std::optional<Reply> reply) {
    outcome->reply = std::move(reply);
    outcome->ended = true;
  });
  turn.runUntil(deadline, outcome->ended);
  if (!outcome->ended) box->deliverWhatCame();
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
