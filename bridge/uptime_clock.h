#pragma once

#include <chrono>
#include <ctime>

namespace bridge {

/// Time that passes while the machine is awake. The limits of an exchange are measured on it, as
/// the application can't answer either while the machine sleeps. Any thread.
struct UptimeClock {
  using duration = std::chrono::nanoseconds;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<UptimeClock>;
  static constexpr bool is_steady = true;

  static time_point now() noexcept {
#ifdef __APPLE__
    constexpr clockid_t clock = CLOCK_UPTIME_RAW;  // there, the monotonic ones go on
#else
    constexpr clockid_t clock = CLOCK_MONOTONIC;
#endif
    timespec time{};
    clock_gettime(clock, &time);
    return time_point(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
  }
};

}  // namespace bridge
