#pragma once

#include <chrono>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

using Clock = std::chrono::steady_clock;

struct Interval {
  Clock::time_point begin;
  Clock::time_point end;

  [[nodiscard]] bool overlaps(const Interval& other) const {
    return begin < other.end && other.begin < end;
  }
};

/// Watches whether the machine gives this process its turn: a thread that wants to run every two
/// milliseconds, and notes when it could not.
class Turns {
 public:
  /// The times without a turn, of 20 ms and more.
  std::vector<Interval> missed() {
    const std::lock_guard lock(mutex_);
    return missed_;
  }

 private:
  void watch(const std::stop_token& stop) {
    using namespace std::chrono_literals;
    for (auto last = Clock::now(); !stop.stop_requested();) {
      std::this_thread::sleep_for(2ms);
      const auto now = Clock::now();
      if (now - last > 20ms) {
        const std::lock_guard lock(mutex_);
        missed_.push_back({last, now});
      }
      last = now;
    }
  }

  std::mutex mutex_;
  std::vector<Interval> missed_;  // guarded by mutex_
  std::jthread thread_{[this](const std::stop_token& stop) { watch(stop); }};
};
