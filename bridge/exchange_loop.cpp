#include "bridge/exchange_loop.h"

#include <system_error>

namespace bridge {

ExchangeLoop& ExchangeLoop::shared() {
  static ExchangeLoop loop;
  return loop;
}

void ExchangeLoop::takeBack() {
  if (background_.joinable()) {
    context_.stop();
    background_.join();
  }
  context_.restart();
}

void ExchangeLoop::leave() {
  context_.poll();
  if (context_.stopped()) return;  // nothing is left to be run
  try {
    background_ = std::thread([this] { context_.run(); });
  } catch (const std::system_error&) {
    return;  // No thread to be had: what is left goes on when the next caller runs the loop.
  }
}

void ExchangeLoop::Turn::runUntil(UptimeClock::time_point deadline, const bool& done) {
  while (!done && loop_.context_.run_one_until(deadline) > 0) {
  }
}

}  // namespace bridge
