#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tests/reliability/restarts/app_records.h"
#include "tests/reliability/restarts/turns.h"

/// One tool call, as the host saw it.
struct Call {
  std::size_t number = 0;
  Interval time{};                  ///< from sending it to its answer
  std::optional<std::string> by{};  ///< the token of the application that answered; none: a failure
  std::string failure{};            ///< the sentence that the agent got instead
};

/// One death of the application, and its return.
struct Restart {
  Clock::time_point killed;  ///< just before it was
  Clock::time_point gone;    ///< from then on nothing answers, and the file is what it will be
  bool fileWasRemoved = false;
  Publication back;
};

/// All that happened to one server.
struct History {
  std::vector<Call> calls;
  std::vector<Restart> restarts;
  std::vector<Interval> stops;  ///< while the server was stopped
  std::vector<CarriedOut> carriedOut;
  std::size_t launches = 0;
};

/// How soon first calls were answered after the application was back.
struct Delays {
  std::size_t counted = 0;
  std::chrono::duration<double> longest{};
};

/// What was found out about a history.
struct Findings {
  std::vector<std::string> violations;
  std::size_t succeeded = 0;
  Delays sentAfter;    ///< calls sent when the application was back
  Delays withoutFile;  ///< calls that waited for the application, without an endpoint file
  Delays deadPort;     ///< calls that waited while the file named a dead port
};

/// Judges what happened; `missed` are the times in which the machine was too busy.
Findings judge(const History& history, const std::vector<Interval>& missed);
