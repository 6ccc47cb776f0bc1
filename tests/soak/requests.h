#pragma once

#include <cstddef>
#include <string>

/// One request of the schedule, what is sent before it, and the expected reply.
struct SoakRequest {
  /// Lines that get no reply: invalid ones, batches, notifications. May be empty.
  std::string unanswered{};
  /// The request, with its line feed.
  std::string line{};
  /// The "id", "result" and "error" of the reply as JSON text. One of the last two is empty.
  std::string id{};
  std::string result{};
  std::string error{};
  /// Whether it is a tool call.
  bool isCall = false;
};

/// The request with that number. All kinds of requests take turns; those that take long are rare:
/// lines of 64 MiB, replies of 4 MB, 100,000 brackets.
SoakRequest soakRequest(std::size_t number);
