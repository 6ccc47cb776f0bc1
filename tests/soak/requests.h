#pragma once

#include <cstddef>
#include <string>

/// One request of the schedule, what is sent before it, and what comes of it.
struct SoakRequest {
  /// Lines without any reply: bad ones, batches, notifications. May be empty.
  std::string unanswered{};
  /// The request, with its line feed.
  std::string line{};
  /// The reply's "id", "result" and "error" as JSON text; of the last two, one is empty.
  std::string id{};
  std::string result{};
  std::string error{};
};

/// The request with that number, the same every time. All kinds come by turns, those that take
/// long rarely: lines of 64 MiB, replies of 4 MB, 100,000 brackets.
SoakRequest soakRequest(std::size_t number);
