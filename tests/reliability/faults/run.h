#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/reliability/faults/fault.h"
#include "tests/reliability/faults/session.h"
#include "tests/reliability/recorded_open.h"
#include "tests/support/server_process.h"

/// What was seen of one session from outside.
struct Observed {
  std::string output{};
  std::string standardError{};
  ExitStatus exit{};
  bool ended = true;                           ///< false: it still ran long after every time limit
  std::map<std::size_t, std::size_t> calls{};  ///< how often the application got each tool call
  std::size_t launches = 0;
  std::string trace{};  ///< strace's
  std::chrono::duration<double> took{};
};

/// Runs sessions with one server program under strace. Thread-safe.
class Runner {
 public:
  explicit Runner(std::string server) : server_(std::move(server)) {}

  /// A session in which these calls fail. They are all of the background thread, or none is.
  [[nodiscard]] Observed run(const Session& session, const std::vector<Fault>& faults) const;

  /// A session without faults, whose trace holds every call.
  [[nodiscard]] Observed runTraced(const Session& session) const;

  /// The same, whose trace holds the calls of the background thread that waits for the reply of the
  /// session's abandoned exchange, after strace has attached to it.
  [[nodiscard]] Observed runBackgroundTraced(const Session& session) const;

 private:
  using Options = std::vector<std::string>;  // of strace
  [[nodiscard]] Observed runUnder(const Session& session, const Options& strace) const;
  [[nodiscard]] Observed runAttached(const Session& session, const Options& strace) const;

  std::string server_;
  RecordedOpen open_;
};
