#pragma once

#include <chrono>
#include <ctime>

namespace bridge {

/// A steady clock that stops while the machine sleeps. The time limits of an exchange use it,
/// because the application cannot answer while the machine sleeps either. Thread-safe.
struct UptimeClock {
  using duration = std::chrono::nanoseconds;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<UptimeClock>;
  static constexpr bool is_steady = true;

  static time_point now() noexcept {
#ifdef __APPLE__
    constexpr clockid_t clock = CLOCK_UPTIME_RAW;  // CLOCK_MONOTONIC runs on during sleep
#else
    constexpr clockid_t clock = CLOCK_MONOTONIC;
#endif
    timespec time{};
    clock_gettime(clock, &time);
    return time_point(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
  }
};

}  // namespace bridge
