#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <string_view>

#include "bridge/exchange.h"
#include "tests/support/scripts.h"
#include "tests/unit/as_bytes.h"

/// Tests of exchanges with a scripted application.
class ExchangeTest : public testing::Test {
 protected:
  using Clock = std::chrono::steady_clock;

  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }  // for the application

  bridge::Outcome exchange(std::chrono::seconds limit, std::string_view request = "{}") {
    const auto start = Clock::now();
    bridge::Outcome outcome = bridge::exchange(app.port(), asBytes(request), limit);
    took = Clock::now() - start;
    return outcome;
  }

  ScriptedApp app;
  Clock::duration took{};
};
