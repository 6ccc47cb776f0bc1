#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "standin/drives.h"
#include "standin/outcome.h"
#include "standin/reply_limit.h"

namespace standin {

/// The version of the wire format, published in the endpoint file.
inline constexpr int wireVersion = 1;

/// Answers requests: checks the token, finds the tool, checks its arguments, runs it. Safe to
/// use from any thread; the drives must outlive it.
class Dispatch {
 public:
  Dispatch(Drives& drives, std::string token) : drives_(drives), token_(std::move(token)) {}

  /// Takes one request as JSON text and returns the reply as compact JSON text, always an
  /// object of at most mostReplyBytes, with "ok" and either "result" or "error".
  std::string answer(std::string_view request) const;

 private:
  Outcome<nlohmann::json> carryOut(const nlohmann::json& request) const;

  Drives& drives_;
  std::string token_;
};

}  // namespace standin
