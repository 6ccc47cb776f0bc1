#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/reliability/faults/right_answers.h"
#include "tests/reliability/faults/run.h"

/// The result of a session with faults.
struct Verdict {
  /// Everything that may not come of these faults; empty if nothing.
  std::vector<std::string> violations{};
  std::size_t injected = 0;  ///< fewer than the faults if a call was not made this time
  bool callFailed = false;   ///< the agent got one of the bridge's own sentences
  bool repliesLost = false;  ///< a reply is missing or cut off
  bool aborted = false;      ///< the process ended by SIGABRT
};

/// Compares a session with its right answers.
Verdict judge(const Session& session, const RightAnswers& right, const std::vector<Fault>& faults,
              const Observed& observed);
