#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>

#include "bridge/nw_connection_box.h"
#include "tests/support/scripts.h"
#include "tests/unit/as_text.h"

/// Boxes and an application that they connect to. The test's thread runs the boxes, so that
/// nothing happens in them but in a call of run...() or exchange().
class RunningBox : public testing::Test {
 public:
  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }

  /// A box that has begun to send this.
  std::shared_ptr<bridge::NWConnectionBox> start(std::string_view request) {
    auto box =
        std::make_shared<bridge::NWConnectionBox>(context, static_cast<std::uint16_t>(app.port()));
    box->send(asText(request), [this, held = std::shared_ptr(completionHeld)](auto given) {
      ++completions;
      reply = std::move(given);
      if (onCompletion) onCompletion();
    });
    return box;
  }

  void runFor(std::chrono::milliseconds time) { context.run_for(time); }

  /// False if it did not come true within 10 seconds.
  template <typename Condition>
  bool runUntil(Condition condition) {
    for (int i = 0; i < 1000 && !condition(); ++i)
      context.run_one_for(std::chrono::milliseconds(10));
    return condition();
  }
  bool runUntilEnded() {
    return runUntil([this] { return completions > 0; });
  }

  /// Runs one whole exchange, and on for a while to see whether anything happens twice.
  void exchange(const ScriptedApp::Script& script, std::string_view request = "{}") {
    app.script({script});
    const auto box = start(request);
    ASSERT_TRUE(runUntilEnded());
    runFor(std::chrono::milliseconds(100));
    EXPECT_EQ(completions, 1);
  }

  [[nodiscard]] std::size_t replySize() const { return bridge::Reply::mostBytes - reply->left(); }

  asio::io_context context{1};
  asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
  ScriptedApp app;

  int completions = 0;                 ///< how often one was called
  std::optional<bridge::Reply> reply;  ///< what the last one was given
  std::function<void()> onCompletion;  ///< what happens within it, if anything
  /// Held by every completion as well: shows when they are gone.
  std::shared_ptr<int> completionHeld = std::make_shared<int>();
};
