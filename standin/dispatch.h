#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "standin/drives.h"

namespace standin {

/// The version of requests and replies, published in the endpoint file.
inline constexpr int wireVersion = 1;

/// The longest reply that the server accepts.
inline constexpr std::size_t maxReplyBytes = 4194304;

/// Answers requests: checks the token, finds the tool, checks its arguments, runs it. Any thread
/// may use it; the drives must outlive it.
class Dispatch {
 public:
  Dispatch(Drives& drives, std::string token) : drives_(drives), token_(std::move(token)) {}

  /// Takes a request and returns the reply, both as JSON text. The reply is always an object of at
  /// most maxReplyBytes with "ok" and either "result" or "error".
  std::string answer(std::string_view request) const;

 private:
  nlohmann::json run(const nlohmann::json& request) const;

  Drives& drives_;
  std::string token_;
};

}  // namespace standin
