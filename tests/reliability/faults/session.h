#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// A request of a session and its right answer.
struct Asked {
  std::string line;       ///< with its line feed
  bool isCall = false;    ///< a tool call; its id is also the number that the application sees
  nlohmann::json result;  ///< the right "result" or "error"; null: any result
};

/// The requests that a host sends at once, and how the application behaves. Requests have the ids
/// 1, 2, 3 and so on.
struct Session {
  std::string_view name;
  std::vector<Asked> asked;
  std::string unanswered{};  ///< lines sent first, none of which gets a reply
  /// Before the first launch, the endpoint file names a port that refuses connections.
  bool appHasToBeStarted = false;
  /// The application leaves the first probe open, and answers it when the first call arrives.
  bool firstProbeIsAbandoned = false;
  bool pipesDoNotBlock = false;

  /// Most of its time is spent waiting for time limits.
  [[nodiscard]] bool mostlyWaits() const { return appHasToBeStarted || firstProbeIsAbandoned; }
  [[nodiscard]] std::string input() const;
};

/// The eight sessions. Each ends with a small call and a request that needs no application, so that
/// something is always asked after a fault.
const std::vector<Session>& sessions();

/// The application's reply to the tool call with this request.
std::string replyTo(const nlohmann::json& request);
