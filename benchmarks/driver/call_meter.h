#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "benchmarks/driver/application.h"
#include "benchmarks/driver/calls.h"
#include "benchmarks/driver/conversation.h"

/// The token that the endpoint file carries.
inline constexpr std::string_view appToken = "4f1c9a6e2b7d4c58a3e0";

/// A server to be measured.
struct Competitor {
  std::string name;
  std::vector<std::string> command;
};

/// What a run of a server costs: times in nanoseconds, memory in bytes.
struct Cost {
  double start = 0;  // from its start to its first answer
  double call = 0;   // from a line's first byte written to the answer's last byte read
  double idleMemory = 0;
  double peakMemory = 0;
};

/// Measures one call with any server, any number of times.
class CallMeter {
 public:
  /// The application must outlive this.
  CallMeter(Application& application, Call call)
      : application_(application), call_(std::move(call)) {}

  /// Starts the server, makes the call once untimed and then `count` times timed, and returns the
  /// median. Everything that the server writes is checked outside the timed parts: an independent
  /// parser must read the expected values. Throws if they are wrong. The floor's answer to a tool
  /// call is not JSON; it must contain the application's result unchanged.
  Cost run(const Competitor& competitor, std::size_t count);

 private:
  double ask(Conversation& conversation, bool isFloor, bool lengthsAsBefore);

  Application& application_;
  const Call call_;
  std::set<std::vector<std::size_t>> right_;  // hashes of what was written and found right
};
