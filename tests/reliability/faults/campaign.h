#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/reliability/faults/judge.h"

/// Which sessions and calls are tried: those whose names contain these words.
struct Choice {
  std::string_view session{};
  std::string_view call{};
};

/// One session with faults.
struct Trial {
  const Session* session;
  const RightAnswers* right;
  std::vector<Fault> faults;

  /// The session's name and strace's expressions.
  [[nodiscard]] std::string description() const;
};

/// Learns the calls and the right answers of the sessions, then runs them with faults.
class Campaign {
 public:
  /// Runs the chosen sessions without faults, and prints what is in them.
  Campaign(const std::string& server, Choice choice);

  /// Every fault of every session.
  [[nodiscard]] std::vector<Trial> singles() const;
  /// For each way in which a call of a session can fail, one of these calls.
  [[nodiscard]] std::vector<Trial> sample() const;
  /// Random pairs of faults in different calls of one session.
  [[nodiscard]] std::vector<Trial> pairs(std::size_t count) const;

  /// Runs the trials side by side and prints each violation and a summary. False if there was any
  /// violation.
  [[nodiscard]] bool run(std::string_view what, const std::vector<Trial>& trials) const;

 private:
  struct Learned {
    const Session* session;
    RightAnswers right;
    std::vector<Fault> faults;
  };
  /// The run with the shortest trace of a few: how often the server asks for a reply that is not
  /// there yet differs, and a session with a fault should make all the calls of the trace.
  [[nodiscard]] Observed runWithoutFaults(const Session& session) const;
  [[nodiscard]] Learned learn(const Session& session, std::string_view call) const;

  Runner runner_;
  std::vector<Learned> learned_;
};
