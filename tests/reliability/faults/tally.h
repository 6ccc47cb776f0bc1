#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string_view>

#include "tests/reliability/faults/judge.h"

/// Counts the results of many trials. Thread-safe.
class Tally {
 public:
  /// Prints the violations.
  void add(std::string_view description, std::size_t faults, const Verdict& verdict,
           std::chrono::duration<double> took);

  void print(std::string_view what) const;
  [[nodiscard]] bool withoutViolation() const { return violated_ == 0; }

 private:
  std::mutex mutex_;
  std::size_t trials_ = 0;
  std::size_t injected_ = 0;
  std::size_t incomplete_ = 0;
  std::size_t unnoticed_ = 0;
  std::size_t callsFailed_ = 0;
  std::size_t repliesLost_ = 0;
  std::size_t aborted_ = 0;
  std::size_t violated_ = 0;
  std::chrono::duration<double> longest_{};
};
