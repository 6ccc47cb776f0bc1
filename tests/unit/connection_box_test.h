#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "bridge/nw_connection_box.h"
#include "tests/support/scripts.h"
#include "tests/unit/as_bytes.h"

/// Tests of a box and the application that it connects to.
class NWConnectionBoxTest : public testing::Test {
 protected:
  using State = bridge::NWConnectionBox::State;

  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }  // for the application

  void open(std::string_view request = "{}") {
    const auto port = static_cast<std::uint16_t>(app.port());
    box = std::make_unique<bridge::NWConnectionBox>(port, asBytes(request));
  }

  bool sendFor(std::chrono::milliseconds time) {
    return box->send(bridge::UptimeClock::now() + time);
  }

  /// Continues the exchange until it is in this state, however busy the machine is.
  void openAndDriveTo(State state, std::string_view request = "{}") {
    open(request);
    while (box->state() < state) ASSERT_FALSE(sendFor(std::chrono::milliseconds(20)));
  }

  /// One whole exchange, with this script for the application.
  void exchange(const ScriptedApp::Script& script, std::string_view request = "{}") {
    app.script({script});
    open(request);
    ASSERT_TRUE(sendFor(ScriptedApp::generous));
    EXPECT_EQ(box->state(), State::finished);
    reply = box->takeReply();
  }

  /// Exchanges with this script until no part of the reply was sent later than `gap` after the part
  /// before it. On a busy machine that can take several attempts. False if none succeeded.
  bool exchangeInTime(const ScriptedApp::Script& script, std::chrono::milliseconds gap) {
    for (int attempt = 0; attempt < 100; ++attempt) {
      const std::size_t connection = app.connectionCount();
      exchange(script);
      app.waitUntilClosedByServer(connection);
      if (app.record(connection).longestGap < gap) return true;
    }
    return false;
  }

  ScriptedApp app;
  std::unique_ptr<bridge::NWConnectionBox> box;
  std::optional<bridge::Reply> reply;
};
