#include "tests/reliability/faults/tally.h"

#include <algorithm>
#include <cstdio>

void Tally::add(std::string_view description, std::size_t faults, const Verdict& verdict,
                std::chrono::duration<double> took) {
  const std::lock_guard lock(mutex_);
  ++trials_;
  injected_ += verdict.injected;
  longest_ = std::max(longest_, took);
  if (verdict.injected < faults) ++incomplete_;
  if (verdict.aborted) {
    ++aborted_;
  } else if (verdict.repliesLost) {
    ++repliesLost_;
  } else if (verdict.callFailed) {
    ++callsFailed_;
  } else {
    ++unnoticed_;
  }
  if (!verdict.violations.empty()) ++violated_;
  for (const std::string& violation : verdict.violations) {
    std::printf("VIOLATION: %.*s: %s\n", static_cast<int>(description.size()), description.data(),
                violation.c_str());
  }
  std::fflush(stdout);
}

void Tally::print(std::string_view what) const {
  std::printf(
      "%.*s: %zu sessions, %zu failures injected (%zu sessions did not reach all of theirs), "
      "longest %.1f s\n"
      "  answered rightly throughout %zu, a call failed %zu, a reply lost %zu, aborted %zu\n"
      "  with violations %zu\n",
      static_cast<int>(what.size()), what.data(), trials_, injected_, incomplete_, longest_.count(),
      unnoticed_, callsFailed_, repliesLost_, aborted_, violated_);
  std::fflush(stdout);
}
