#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "bridge/exchange.h"
#include "bridge/reply.h"
#include "json/value.h"

namespace bridge {

/// Why a tool call failed: a complete sentence that the agent is shown as it stands, UTF-8 as
/// Value::string() gives it.
struct BridgeFailure {
  std::string message;
};

/// What the application made of a successful call; it owns the bytes of the reply that the
/// value points into.
class AppResult {
 public:
  AppResult(Reply reply, json::Document document, json::Value value)
      : reply_(std::move(reply)), document_(std::move(document)), value_(value) {}

  /// Any JSON value. Valid as long as this result.
  [[nodiscard]] json::Value value() const { return value_; }

 private:
  Reply reply_;
  json::Document document_;
  json::Value value_;
};

using CallResult = std::expected<AppResult, BridgeFailure>;

/// Has the desktop application carry out a tool call: makes sure that it runs and answers (see
/// waitForApp(); up to 20 seconds after a first probe of 3, and a last one), sends it the call,
/// and waits up to 30 seconds for what it says. Neither the tool's name nor the arguments, an
/// object, are looked at. Blocks; main thread only.
CallResult callApp(std::string_view tool, json::Value arguments);

/// The result of a call whose exchange came out like that.
CallResult callResult(Outcome outcome);

}  // namespace bridge
