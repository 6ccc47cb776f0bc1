#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <utility>

#include "bridge/exchange.h"
#include "bridge/reply.h"
#include "json/value.h"

namespace bridge {

/// Why a tool call failed.
struct BridgeFailure {
  std::string message;  ///< a complete sentence for the agent, well-formed UTF-8
};

/// The result of a successful call. Owns the bytes of the reply that the value points into.
class AppResult {
 public:
  AppResult(Reply reply, json::Document document, json::Value value)
      : reply_(std::move(reply)), document_(std::move(document)), value_(value) {}

  /// Any JSON value. Valid as long as this object, which may be moved.
  [[nodiscard]] json::Value value() const { return value_; }

 private:
  Reply reply_;
  json::Document document_;
  json::Value value_;
};

using CallResult = std::expected<AppResult, BridgeFailure>;

/// Forwards a tool call to the desktop application and returns its answer. Makes sure first that
/// the application answers (see waitForApp()), then waits up to 30 seconds for the reply. Neither
/// the tool's name nor the arguments, an object, are checked. Blocks for up to 57 seconds; for the
/// main thread only.
CallResult callApp(std::string_view tool, json::Value arguments);

/// Converts an exchange's outcome into the call's result.
CallResult callResult(Outcome outcome);

}  // namespace bridge
